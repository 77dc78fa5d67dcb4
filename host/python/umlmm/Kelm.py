"""The kernel's package. The module `umlmm.Kelm` is made when `umlmm` is imported, so Python never reads this file; it is
here because checkers of types ask where the module's source is."""
