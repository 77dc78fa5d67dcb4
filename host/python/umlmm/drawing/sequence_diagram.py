"""Sequence diagrams: the lifelines of an interaction, and what happens on them in the order of its fragments."""

from __future__ import annotations

import umlmm
from umlmm.drawing import notation
from umlmm.drawing.view import Box, Execution, Sequence, Step, Text


def build(chosen, options, depth, direction, limit):
    if len(chosen.elements) != 1 or not isinstance(chosen.elements[0], umlmm.ImmutableInteraction):
        raise ValueError(f"A sequence is drawn of one interaction, not of {chosen.title}")
    return _Builder(chosen.elements[0], options, direction, limit).view


class _Builder:
    def __init__(self, interaction, options, direction, limit):
        self.view = Sequence("sequence", f"sd {notation.name_of(interaction)}", direction)
        self._options = options
        self._keys = {}
        self._seen = {}  # by event or message, the number of its step
        self._executions = []
        lifelines = [each for each in interaction.lifeline if not options.hides(each)]
        if limit is not None and len(lifelines) > limit:
            self.view.notes.append(f"There are {len(lifelines)} lifelines, and the first {limit} are shown; limit=None "
                                   f"draws all")
            lifelines = lifelines[:limit]
        for lifeline in lifelines:
            self._add_lifeline(lifeline)
        self._walk(interaction.fragment)
        left = [message for message in interaction.message if message not in self._seen]
        for message in left:  # whose ends are in no fragment
            self._message(message)
        self._add_executions()

    def _add_lifeline(self, lifeline):
        key = self._keys[lifeline] = f"b{len(self._keys) + 1}"
        part = lifeline.represents
        name = notation.clean(lifeline.name or "") or (notation.clean(part.name or "") if part is not None else "")
        kind = notation.name_of(part.type) if part is not None and part.type is not None else ""
        text = f"{name} : {kind}".strip() if kind and kind != name else name or "<Lifeline>"
        self.view.boxes.append(Box(key, lifeline, "Lifeline", "box", Text(text, lifeline),
                                   notation.title(lifeline.path), notation.title(f"Lifeline {lifeline.path}")))

    def _step(self, kind, element, text="", lifelines=(), sort=""):
        self.view.steps.append(Step(kind, element, text, tuple(lifelines), sort))
        return len(self.view.steps) - 1

    def _covered(self, fragment):
        """The lifelines that a fragment is on, in their order; all of them if it tells none."""
        covered = fragment.covered
        covered = list(covered) if hasattr(covered, "__iter__") else [covered]
        return [key for lifeline, key in self._keys.items() if lifeline in covered] or list(self._keys.values())

    def _walk(self, fragments):
        for fragment in fragments:
            if isinstance(fragment, umlmm.ImmutableMessageEnd) and fragment.message is not None:
                self._message(fragment.message)
            elif isinstance(fragment, umlmm.ImmutableCombinedFragment):
                self._fragment(fragment)
            elif isinstance(fragment, umlmm.ImmutableInteractionUse):
                other = fragment.refersTo if fragment.refersTo is not None else fragment
                self._step("use", fragment, notation.name_of(other), self._covered(fragment))
            elif isinstance(fragment, (umlmm.ImmutableStateInvariant, umlmm.ImmutableContinuation)):
                condition = getattr(fragment, "invariant", None)
                text = (_condition(condition) if condition is not None else "") or notation.name_of(fragment)
                self._step("state", fragment, notation.clean(text), self._covered(fragment))
            elif isinstance(fragment, umlmm.ImmutableExecutionSpecification):
                self._executions.append(fragment)
            else:
                self._seen[fragment] = self._step("event", fragment, "", self._covered(fragment))

    def _fragment(self, fragment):
        operator = fragment.interactionOperator.value
        self._step("fragment", fragment, operator, self._covered(fragment))
        for operand in fragment.operand:
            self._step("operand", operand, _guard(operand), self._covered(fragment))
            self._walk(operand.fragment)
        self._step("end", fragment, operator, self._covered(fragment))

    def _message(self, message):
        if message in self._seen or self._options.hides(message):
            return
        ends = [self._lifeline(end) for end in (message.sendEvent, message.receiveEvent)]
        if not any(ends):
            self._seen[message] = -1
            return
        number = self._step("message", message, _label(message, self._options), ends, message.messageSort.value)
        for each in (message, message.sendEvent, message.receiveEvent):
            if each is not None:
                self._seen[each] = number

    def _lifeline(self, end):
        covered = getattr(end, "covered", None)
        if covered is None:
            return ""
        for lifeline in covered if hasattr(covered, "__iter__") else [covered]:
            return self._keys.get(lifeline, "")
        return ""

    def _add_executions(self):
        lost = 0
        for execution in self._executions:
            first, last = self._seen.get(execution.start), self._seen.get(execution.finish)
            if first is None or last is None or not execution.covered:
                lost += 1
                continue
            key = self._keys.get(next(iter(execution.covered)))
            if key is not None:
                first, last = sorted((first, last))
                level = sum(other.lifeline == key and other.first <= last and first <= other.last
                            for other in self.view.executions)
                self.view.executions.append(Execution(key, first, last, execution, level))
        if lost:
            self.view.notes.append(f"Executions without a start or a finish in the interaction are not shown: {lost}")


def _guard(operand):
    guard = operand.guard
    if guard is None:
        return ""
    bounds = [notation.value(each) for each in (guard.minint, guard.maxint) if each is not None]
    text = _condition(guard)
    words = [f"({', '.join(bounds)})"] * bool(bounds) + [f"[{text}]"] * bool(text)
    return notation.clean(" ".join(words))


def _condition(constraint):
    return notation.value(constraint.specification) if constraint.specification is not None else constraint.name or ""


def _label(message, options):
    name = message.name or (message.signature.name if message.signature is not None else "")
    arguments = [notation.value(each) for each in message.argument] if "parameters" in options else []
    return notation.clean(f"{name}({', '.join(arguments)})" if arguments else name, 100)
