"""The two model folders as the program is delivered with them."""

import json
import shutil
from pathlib import Path

from . import acoustic, lexicon
from .streaming import export
from .streaming.network import Encoder

_TEXTS = Path(__file__).parent.parent / "texts"
_VERSION = "1.0"
#: The decoder's own beams are too narrow for this model; the flat second pass only costs time.
_DECODER_OPTIONS = {
    "cmn": "live",
    "beam": "1e-120",
    "pbeam": "1e-120",
    "wbeam": "1e-100",
    "maxhmmpf": "-1",
    "lw": "6.5",
    "fwdflat": "no",
}


def _describe(folder: Path, readme: str, description: dict[str, object]) -> None:
    text = json.dumps(description, ensure_ascii=False, indent=2)
    (folder / "MODELL.json").write_text(text + "\n", encoding="utf-8")
    shutil.copyfile(_TEXTS / readme, folder / "LIESMICH.txt")


def _check_phones(acoustic_phones: set[str]) -> None:
    """A word that is pronounced at run time may only use phones that the model has."""
    mapped = {row.partition("\t")[2] for row in lexicon.PHONE_MAP.read_text(encoding="utf-8").splitlines()}
    if unknown := {phone for phones in mapped for phone in phones.split()} - acoustic_phones:
        raise ValueError(f"phonemap.tsv uses phones that the model lacks: {unknown}")


def make_classic(
    folder: Path, acoustic_folder: Path, size: acoustic.Size, dictionary: Path, phones: Path, language_model: Path
) -> None:
    _check_phones(set(phones.read_text(encoding="utf-8").split()))
    acoustic.package(acoustic_folder, size, folder)
    for source, name in ((dictionary, "de.dic"), (language_model, "de.lm.bin"), (lexicon.PHONE_MAP, "phonemap.tsv")):
        shutil.copyfile(source, folder / name)
    cepstra = ",".join(f"{value:.2f}" for value in acoustic.mean_cepstra(acoustic_folder))
    options = _DECODER_OPTIONS | {"cmninit": cepstra}
    (folder / "decoder.options").write_text("".join(f"{name} {value}\n" for name, value in options.items()))
    _describe(folder, "LIESMICH-classic.txt", {
        "name": "Querlin-Startmodell",
        "version": _VERSION,
        "language": "de-DE",
        "kind": "pocketsphinx",
        "words": len(lexicon.read_words(dictionary)),
    })


def make_streaming(folder: Path, encoder: Encoder) -> None:
    export.export(encoder, folder)
    _describe(folder, "LIESMICH-streaming.txt", {
        "name": "Querlin-Streaming-Testmodell",
        "version": _VERSION,
        "language": "de-DE",
        "kind": "transducer",
        "modelingUnit": "bpe",
    })
