"""Small tables, printed as text and as HTML."""
from __future__ import annotations

import html
from typing import Any, Dict, Iterator, List, Sequence

MOST_ROWS = 60


class Table(Sequence):
    """Rows as dictionaries that have the same keys.

    >>> Table("two levels", [{"channel": "DE", "dB": 80.5}, {"channel": "NDE", "dB": 7.25}])
    two levels
    channel    dB
    DE       80.5
    NDE      7.25
    """

    def __init__(self, title: str, rows: Sequence[Dict[str, Any]]) -> None:
        self.title = title
        self.rows: List[Dict[str, Any]] = list(rows)

    def __len__(self) -> int:
        return len(self.rows)

    def __getitem__(self, index):
        return self.rows[index]

    def __iter__(self) -> Iterator[Dict[str, Any]]:
        return iter(self.rows)

    def to_pandas(self):
        """A pandas.DataFrame with a column per key."""
        import pandas

        return pandas.DataFrame(self.rows)

    def _cells(self) -> List[List[str]]:
        names = list(self.rows[0])
        return [names] + [[_cell(row[name]) for name in names] for row in self.rows[:MOST_ROWS]]

    def _rest(self) -> str:
        return f"... and {len(self) - MOST_ROWS} more" if len(self) > MOST_ROWS else ""

    def __repr__(self) -> str:
        lines = [self.title]
        if self.rows:
            cells = self._cells()
            numeric = [isinstance(value, (int, float)) for value in self.rows[0].values()]
            widths = [max(len(row[i]) for row in cells) for i in range(len(numeric))]
            for row in cells:
                aligned = (cell.rjust(width) if right else cell.ljust(width)
                           for cell, width, right in zip(row, widths, numeric))
                lines.append("  ".join(aligned).rstrip())
        return "\n".join(lines + ([self._rest()] if self._rest() else []))

    def _repr_html_(self) -> str:
        if not self.rows:
            return f"<p>{html.escape(self.title)}</p>"
        head, *body = self._cells()

        def row(cells: List[str], tag: str) -> str:
            return "<tr>" + "".join(f"<{tag}>{html.escape(cell)}</{tag}>" for cell in cells) + "</tr>"

        return (f"<table><caption>{html.escape(self.title)}</caption><thead>{row(head, 'th')}</thead><tbody>"
                + "".join(row(cells, "td") for cells in body) + f"</tbody></table>{self._rest()}")


def _cell(value: Any) -> str:
    if value is None:
        return ""
    if isinstance(value, float):
        return f"{value:.6g}"
    return " ".join(str(value).split())
