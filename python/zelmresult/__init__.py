"""Result documents of a vibration and acoustics analyzer as NumPy arrays.

    import zelmresult
    with zelmresult.open("pump.zmxf") as doc:
        print(doc)
        spectrum = doc.select(channel="DE*", kind="autospectrum")[0]
        print(spectrum.values, spectrum.unit, spectrum.db().max())
"""
from zelmresult import _core
from zelmresult._catalogue import Summary, catalogue
from zelmresult._content import Array
from zelmresult._document import Damage, Document, Results, Verification, open, verify
from zelmresult._errors import DocumentError, DocumentNotFoundError, SaveError
from zelmresult._new import NewDocument, new
from zelmresult._quantity import UNITS, Quantity
from zelmresult._result import Header, Result
from zelmresult._table import Table

__version__ = _core.version
# What results are called, for select.
KINDS = tuple(_core.kinds())
# The numbers of process types by their names, for new results.
PROCESS_TYPES = dict(_core.process_types())

__all__ = ["Array", "Damage", "Document", "DocumentError", "DocumentNotFoundError", "Header", "KINDS", "NewDocument",
           "PROCESS_TYPES", "Quantity", "Result", "Results", "SaveError", "Summary", "Table", "UNITS", "Verification",
           "catalogue", "new", "open", "verify"]
