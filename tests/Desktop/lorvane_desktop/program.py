"""Copies of the program that find models of their own beside them, to give it others."""

import json
import shutil
import tempfile
from pathlib import Path

from .session import BINARY


def with_models(session, change):
    """The path of a copy whose models folder `change(folder)` has altered. The folder's files are
    links: unlink one before writing another in its place."""
    folder = Path(tempfile.mkdtemp(prefix="program-", dir=session.home))
    shutil.copy2(BINARY, folder)
    (folder / "deps").symlink_to((BINARY.parent / "deps").resolve())
    models = folder / "models"
    shutil.copytree((BINARY.parent / "models").resolve(), models,
                    copy_function=lambda source, target: Path(target).symlink_to(source))
    change(models / "en")
    return folder / BINARY.name


def without_analyser(model):
    """A model of the larger size alone and under another name: it serves for everything but the
    analysis of whole files, so that these are cut into chunks."""
    manifest = json.loads((model / "manifest.json").read_text())
    manifest["sizes"] = {"only": manifest["sizes"]["base"]}
    (model / "manifest.json").unlink()
    (model / "manifest.json").write_text(json.dumps(manifest))


def damaged(model):
    """A model of whose larger size a part is rubbish, in a file of the right length: what is live
    works, and no finished file can be recognised."""
    decoder = model / "base/decoder.onnx"
    size = decoder.stat().st_size
    decoder.unlink()
    decoder.write_bytes(bytes(size))
