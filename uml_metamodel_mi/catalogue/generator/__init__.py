"""Makes the family of UML classes from the catalogue's tables: read, check, derive, render."""
