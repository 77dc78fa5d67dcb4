"""A sequence as a text of PlantUML and of Mermaid."""

from __future__ import annotations

_PLANTUML_ARROWS = {"synchCall": "->", "asynchCall": "->>", "asynchSignal": "->>", "reply": "-->>",
                    "createMessage": "-->>", "deleteMessage": "->"}
_PLANTUML_FRAGMENTS = {"alt", "opt", "loop", "par", "break", "critical"}
_MERMAID_ARROWS = {"synchCall": "->>", "asynchCall": "-)", "asynchSignal": "-)", "reply": "--)", "createMessage": "--)",
                   "deleteMessage": "-x"}
_MERMAID_OPERANDS = {"alt": "else", "par": "and", "critical": "option"}
_MERMAID_FRAGMENTS = {"alt", "opt", "loop", "par", "break", "critical"}


def plantuml(view, text):
    rows = ["@startuml", *(f"' {note}" for note in view.notes), f"mainframe {text(view.title)}"]
    made = {step.lifelines[1] for step in view.steps if step.sort == "createMessage"}
    rows += [f'participant "{text(box.name.text)}" as {box.key}' for box in view.boxes]
    waiting = []
    for at, step in enumerate(view.steps):
        if step.kind == "message":
            source, target = step.lifelines
            if step.sort == "createMessage" and target in made:
                made.remove(target)
                rows.append(f"create {target}")
            rows.append(f"{source or '['} {_PLANTUML_ARROWS[step.sort]} {target or ']'} : {text(step.text)}"
                        .replace("[ ", "[").replace(" ] :", "] :"))
        elif step.kind == "fragment":
            waiting.append([step.text, 0])
        elif step.kind == "operand":
            operator, count = waiting[-1]
            waiting[-1][1] += 1
            is_known = operator in _PLANTUML_FRAGMENTS
            word = "else" if count else operator if is_known else f"group {operator}"
            rows.append(f"{word} {text(step.text)}".rstrip())
        elif step.kind == "end":
            if not waiting.pop()[1]:
                rows.append(f"group {step.text}")
            rows.append("end")
        elif step.kind in ("use", "state") and step.lifelines:
            word = "ref" if step.kind == "use" else "hnote"
            rows.append(f"{word} over {', '.join(step.lifelines)} : {text(step.text)}")
        rows += _bars(view, at)
        if step.sort == "deleteMessage" and step.lifelines[1]:
            rows.append(f"destroy {step.lifelines[1]}")
    return "\n".join([*rows, "@enduml\n"])


def _bars(view, at):
    """Executions that begin or end with a step."""
    gone = {step.lifelines[1] for step in view.steps[:at + 1] if step.sort == "deleteMessage"}
    for execution in view.executions:
        if execution.first == at:
            yield f"activate {execution.lifeline}"
        if execution.last == at and execution.lifeline not in gone:
            yield f"deactivate {execution.lifeline}"


def mermaid(view, text):
    rows = ["sequenceDiagram", *(f"  %% {note}" for note in view.notes)]
    rows += [f"  participant {box.key} as {text(box.name.text)}" for box in view.boxes]
    if any("" in step.lifelines for step in view.steps if step.kind == "message"):
        rows += ["  %% Messages without a source or a target come from and go to a lifeline of their own.",
                 "  participant away"]
    waiting = []
    for at, step in enumerate(view.steps):
        if step.kind == "message":
            source, target = step.lifelines
            rows.append(f"  {source or 'away'}{_MERMAID_ARROWS[step.sort]}{target or 'away'}: {text(step.text)}")
        elif step.kind == "fragment":
            waiting.append([step.text, 0])
        elif step.kind == "operand":
            rows.append("  " + _mermaid_operand(waiting[-1], step, text))
        elif step.kind == "end":
            if not waiting.pop()[1]:
                rows.append(f"  opt {step.text}")
            rows.append("  end")
        elif step.kind in ("use", "state") and step.lifelines:
            ends = dict.fromkeys((step.lifelines[0], step.lifelines[-1]))
            rows.append(f"  Note over {','.join(ends)}: {'ref ' * (step.kind == 'use')}{text(step.text)}")
        rows += [f"  {row}" for row in _bars(view, at)]
    return "\n".join([*rows, ""])


def _mermaid_operand(waiting, step, text):
    operator, count = waiting
    waiting[1] += 1
    guard = text(step.text)
    if operator not in _MERMAID_FRAGMENTS:  # the nearest that has one part, and the name of what it is
        return f"opt {operator} {guard}".rstrip() if not count else f"%% the next part of {operator} {guard}".rstrip()
    if not count:
        return f"{operator} {guard}".rstrip()
    word = _MERMAID_OPERANDS.get(operator)
    return f"{word} {guard}".rstrip() if word else f"%% the next part of {operator} {guard}".rstrip()
