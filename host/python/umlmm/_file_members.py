"""What model files add to models and elements; `umlmm.files`, which does the work, is brought in when it is asked."""

from umlmm import _front

@_front.adds_to(_front.MODELS)
class _Model:
    @property
    def report(self) -> "umlmm.files.Report | None":
        """What reading has met; None for a model that came from no file."""
        from umlmm import files
        return files.report(self) if files.is_loaded(self) else None

    @property
    def files(self) -> "list[umlmm.files.ReportFile]":
        """The files that the model came from, with their dialects."""
        from umlmm import files
        return files.report(self).files if files.is_loaded(self) else []

    @property
    def unresolved(self) -> "list[umlmm.files.Unresolved]":
        """References that lead nowhere, as they were read."""
        from umlmm import files
        return files.unresolved(self)

    def by_id(self, id: str, file: "umlmm.files.Path | None" = None) -> "umlmm.Kelm.ClassObject | None":
        """The element with an id of the files, or of one of them; None if there is none."""
        from umlmm import files
        return files.by_id(self, id, file)

    def stereotyped(self, name: str) -> "list[umlmm.Kelm.ClassObject]":
        """The elements to which a stereotype of this name is applied, in the order of the applications."""
        from umlmm import files
        return files.stereotyped(self, name)

    def save(self, path: "umlmm.files.Target | None" = None, *, dialect: "str | None" = None,
             force: bool = False) -> None:
        """Writes every changed file of the model, or all of it to a path; `umlmm.files.save` tells more."""
        from umlmm import files
        files.save(self, path, dialect=dialect, force=force)


@_front.adds_to(_front.ELEMENTS)
class _Element:
    @property
    def stereotypes(self) -> "umlmm.files.Stereotypes":
        """The stereotypes that are applied to the element, with their tagged values, which can be changed."""
        from umlmm import files
        return files.stereotypes(self)

    @property
    def unknown(self) -> "list[umlmm.files.Unknown]":
        """What stood with the element in its file beside what the metamodel has a place for."""
        from umlmm import files
        return files.unknown(self)
