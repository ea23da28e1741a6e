"""Reads datasets 164, 58 and 58b of Universal Files, column by column. Fails at whatever is not in its columns."""
import struct
from dataclasses import dataclass, field

DELIMITER = b"    -1"


@dataclass
class Function:
    texts: list
    function: int
    number: int
    part: int
    response: tuple  # name, node, direction
    reference: tuple
    ordinate_type: int
    is_even: bool
    first: float
    step: float
    z: float
    axes: list  # abscissa, ordinate, denominator, Z: type, exponents of length, force and temperature, label, unit
    x: list = field(default_factory=list)
    y: list = field(default_factory=list)


class Lines:
    def __init__(self, content):
        self.content, self.at = content, 0

    def __bool__(self):
        return self.at < len(self.content)

    def next(self):
        end = self.content.index(b"\n", self.at)
        line, self.at = self.content[self.at : end], end + 1
        assert len(line) <= 80 and all(32 <= byte < 127 for byte in line), line
        return line.decode("ascii")

    def take(self, count):
        self.at += count
        return self.content[self.at - count : self.at]


def columns(line, *widths):
    """The fields of a line; a negative width skips columns, which must be blank."""
    fields, at = [], 0
    for width in widths:
        text = line[at : at + abs(width)]
        at += abs(width)
        if width > 0:
            fields.append(text.strip())
        else:
            assert not text.strip(), line
    assert not line[at:].strip(), line
    return fields


def read_function(lines, kind):
    texts = [lines.next() for _ in range(5)]
    degrees = columns(lines.next(), 5, 10, 5, 10, -1, 10, 10, 4, -1, 10, 10, 4)
    form = columns(lines.next(), 10, 10, 10, 13, 13, 13)
    axes = []
    for _ in range(4):
        *numbers, label, unit = columns(lines.next(), 10, 5, 5, 5, -1, 20, -1, 20)
        axes.append((*map(int, numbers), label, unit))
    read = Function(
        texts, int(degrees[0]), int(degrees[1]), int(degrees[2]),
        (degrees[4], int(degrees[5]), int(degrees[6])), (degrees[7], int(degrees[8]), int(degrees[9])),
        int(form[0]), form[2] == "1", float(form[3]), float(form[4]), float(form[5]), axes)
    assert read.is_even == (read.step != 0)
    points = int(form[1])
    is_complex = read.ordinate_type in (5, 6)
    per_point = (0 if read.is_even else 1) + (2 if is_complex else 1)
    numbers = binary(lines, kind, points * per_point) if kind[6:7] == "b" else text(lines, read, points * per_point)
    if not read.is_even:
        read.x = numbers[0::per_point]
    else:
        read.x = [read.first + i * read.step for i in range(points)]
    values = [n for i, n in enumerate(numbers) if read.is_even or i % per_point]
    read.y = [complex(a, b) for a, b in zip(values[0::2], values[1::2])] if is_complex else values
    return read


def text(lines, read, count):
    """Double precision: ordinates of 20 columns, four to a line; an abscissa of 13 before each point."""
    assert read.ordinate_type in (4, 6)
    if read.is_even:
        widths = [20] * 4
    else:
        widths = [13, 20] * 2 if read.ordinate_type == 4 else [13, 20, 20]
    numbers = []
    while len(numbers) < count:
        line = lines.next()
        assert len(line) == sum(widths[: min(len(widths), count - len(numbers))]), line
        numbers += [float(number) for number in columns(line, *widths) if number]
    return numbers


def binary(lines, kind, count):
    order, floats, header_lines, size, *zeros = map(int, columns(kind[7:], 6, 6, 12, 12, 6, 6, 12, 12))
    assert (order, floats, header_lines, size) == (1, 2, 11, 4 * count) and not any(zeros)
    numbers = struct.unpack(f"<{count}f", lines.take(size))
    assert lines.next() == ""
    return list(numbers)


def read(path):
    """The units, and the functions in their order."""
    lines = Lines(path.read_bytes())
    units, functions = None, []
    while lines:
        assert lines.next() == DELIMITER.decode()
        kind = lines.next()
        if kind[:6] == "   164":
            code, _, mode = columns(lines.next(), 10, 20, 10)
            factors = [f.replace("D", "E") for line in (lines.next(), lines.next()) for f in columns(line, 25, 25, 25)]
            units = (int(code), int(mode), [float(f) for f in factors if f])
        else:
            assert kind[:6] == "    58", kind
            functions.append(read_function(lines, kind))
        assert lines.next() == DELIMITER.decode()
    return units, functions
