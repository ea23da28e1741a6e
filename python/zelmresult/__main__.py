"""python -m zelmresult: pictures and catalogues of documents from the command line."""
from __future__ import annotations

import argparse
import sqlite3
import sys
from typing import List, Optional

import zelmresult


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(prog="python -m zelmresult", description="Result documents")
    parser.add_argument("--version", action="version", version=f"zelmresult {zelmresult.__version__}")
    verbs = parser.add_subparsers(dest="verb", required=True)
    plot = verbs.add_parser("plot", help="draws results into a file")
    plot.add_argument("file", help="result document")
    plot.add_argument("-o", "--output", required=True, help="picture: .svg, .png or .pdf")
    plot.add_argument("--result", type=int, action="append", help="a result by its number; may be given again")
    plot.add_argument("--channel", action="append", help="results of a channel: a name, a pattern or #2")
    plot.add_argument("--reference", action="append", help="results against a reference channel")
    plot.add_argument("--kind", action="append", help="results of a kind: " + ", ".join(zelmresult.KINDS))
    plot.add_argument("--name", action="append", help="results by the name of their process")
    plot.add_argument("--at", help="of waterfalls the slice nearest to a value, such as 3000rpm")
    plot.add_argument("--unit", help="the unit of the values")
    plot.add_argument("--db", action=argparse.BooleanOptionalAction, help="levels, or values")
    catalogue = verbs.add_parser("catalogue", help="puts the headers of many documents into a database")
    catalogue.add_argument("paths", nargs="+", help="documents, and folders that are searched for them")
    catalogue.add_argument("-o", "--output", required=True, help="SQLite database, made or brought up to date")
    catalogue.add_argument("--processes", type=int, help="how many read at a time")
    catalogue.add_argument("--scheduler", help="of a Dask cluster that reads instead: tcp://host:8786")
    return parser


def _catalogue(options: argparse.Namespace) -> None:
    try:
        done = zelmresult.catalogue(options.paths, sqlite=options.output, processes=options.processes,
                                    scheduler=options.scheduler)
    except sqlite3.Error as error:
        raise ValueError(f"{options.output}: {error}") from None
    print(f"{options.output}: {done.results} results; {done.read} files read, {done.unchanged} unchanged, "
          f"{done.removed} gone, {len(done.damaged)} damaged")
    for file, reason in done.damaged.items():
        print(f"  {file}: {reason}")


def _plot(options: argparse.Namespace) -> None:
    import matplotlib

    matplotlib.use("agg")
    # The same document gives the same bytes.
    matplotlib.rcParams["svg.hashsalt"] = "zelmresult"
    from matplotlib import pyplot
    from zelmresult import plots

    with zelmresult.open(options.file) as doc:
        chosen = doc.select(options.channel, options.kind, reference=options.reference, name=options.name,
                            number=options.result)
        if not chosen:
            raise ValueError(f"{options.file} has no such result; {len(doc)} are there")
        if options.at and any(result.header.waterfall_dimension != 2 for result in chosen):
            raise ValueError("--at is for waterfalls alone: choose them by --kind waterfall")
        results = [result.at(options.at) if options.at else result for result in chosen]
        axes = plots.plot_all(results, db=options.db, unit=options.unit)
        metadata = {"svg": {"Date": None}, "pdf": {"CreationDate": None}}.get(options.output.rsplit(".", 1)[-1])
        axes[0].figure.savefig(options.output, metadata=metadata)
        pyplot.close("all")


def main(arguments: Optional[List[str]] = None) -> int:
    options = _parser().parse_args(arguments)
    try:
        {"plot": _plot, "catalogue": _catalogue}[options.verb](options)
    except (OSError, ValueError) as error:
        print(f"zelmresult: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
