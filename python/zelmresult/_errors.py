"""What goes wrong with documents, as exceptions."""
from __future__ import annotations

import errno
import os
from typing import Optional, Sequence


class DocumentError(OSError):
    """A document, or a part of it, can't be read.

    kind      "not_opened", "not_a_document", "cut_off", "damaged", "too_large", "no_such_result" or "unknown_kind"
    offset    where in the file the read stopped, None when it didn't begin
    subject   what was to be read, such as "the data of result 3"
    chunk     the code of the chunk that was entered last, "" for none
    expected  what should have been there, None when that isn't known
    """

    def __init__(self, filename: str, message: str, kind: str = "damaged", offset: Optional[int] = None,
                 subject: str = "", chunk: str = "", expected: Optional[str] = None,
                 system_error: int = 0) -> None:
        super().__init__(system_error or None, message)
        self.filename = filename
        self.message = message
        self.kind = kind
        self.offset = offset
        self.subject = subject
        self.chunk = chunk
        self.expected = expected

    def __str__(self) -> str:
        return f"{self.filename}: {self.message}" if self.filename else self.message

    def __reduce__(self):
        return _restored, (type(self), self.filename, self.message, self.kind, self.offset, self.subject, self.chunk,
                           self.expected, self.errno or 0)


class DocumentNotFoundError(DocumentError, FileNotFoundError):
    """There is no such file."""


class SaveError(OSError):
    """A document wasn't saved, and what was there before is untouched. reasons says why, sentence by sentence."""

    def __init__(self, filename: str, reasons: Sequence[str]) -> None:
        super().__init__(None, " ".join(reason.rstrip(".") + "." for reason in reasons) or "the document could not be saved")
        self.filename = filename
        self.reasons = list(reasons)

    def __str__(self) -> str:
        return f"{self.filename}: {self.strerror}" if self.filename else str(self.strerror)

    def __reduce__(self):
        return SaveError, (self.filename, self.reasons)


def _restored(made, *fields):
    return made(*fields)


def _code_text(code: int) -> str:
    return code.to_bytes(4, "little").decode("latin-1") if code else ""


def document_error(filename, message, kind, offset, subject, chunk, expected, system_error, reason) -> DocumentError:
    """The exception for a failure that the library reports; reason is the system's where that has no number in errno."""
    made = DocumentNotFoundError if system_error == errno.ENOENT else DocumentError
    reason = os.strerror(system_error) if system_error else reason
    message = message.removeprefix(filename).strip() + (f": {reason}" if reason else "")
    return made(filename, message, kind, offset, subject, _code_text(chunk), expected, system_error)
