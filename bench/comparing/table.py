"""The tables that are printed, in Markdown."""

import pathlib

BEGIN = "<!-- bench/compare writes from here -->"
END = "<!-- bench/compare writes to here -->"
WRONG = "✗"
NOTHING = "–"


class Section:
    """A heading, some words, a table, and what was wrong with the results."""

    def __init__(self, title, words, columns):
        self.title = title
        self.words = words
        self.columns = columns
        self.rows = []
        self.notes = []
        self.is_ours_right = True

    def add(self, label, cells):
        self.rows.append([label] + [str(cell) for cell in cells])

    def judge(self, label, programs):
        """Keeps what was wrong with these programs' results; the first one is ours."""
        for program in programs:
            for complaint in program.complaints:
                self.notes.append(f"{WRONG} {label}, {program.name}: {complaint}")
                if program.name.startswith("Vantor"):
                    self.is_ours_right = False

    def text(self):
        lines = [f"### {self.title}", "", self.words, ""]
        lines += ["| " + " | ".join(["", *self.columns]).strip() + " |"]
        lines += ["|---" * (len(self.columns) + 1) + "|"]
        lines += ["| " + " | ".join(row) + " |" for row in self.rows]
        if self.notes:
            lines += ["", *[f"- {note}" for note in self.notes]]
        return "\n".join(lines + [""])


def nanoseconds(seconds, entries):
    return f"{seconds * 1e9 / entries:,.0f}"


def ratio(program, ours):
    """The time of a program over ours; marked where its result was wrong."""
    if not program.outcomes:
        return NOTHING
    return f"{program.seconds() / ours:.2f}" + (f" {WRONG}" if program.complaints else "")


def write_between_marks(path, text):
    """Puts the text into a document, in the place of what stood there between the marks."""
    document = pathlib.Path(path)
    before, begin, rest = document.read_text().partition(BEGIN)
    _, end, after = rest.partition(END)
    if not begin or not end:
        raise SystemExit(f"{path} has no place for the tables: {BEGIN} … {END}")
    document.write_text(f"{before}{BEGIN}\n{text}\n{END}{after}")
