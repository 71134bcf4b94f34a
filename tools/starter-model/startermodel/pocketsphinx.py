"""PocketSphinx through its C library, fed in blocks as a microphone would."""

import ctypes
import tempfile
from ctypes import POINTER, c_char_p, c_float, c_int, c_int16, c_int32, c_size_t, c_void_p
from pathlib import Path

import numpy as np

BLOCK_SAMPLES = 1600
_FORMAT_UNKNOWN = 0


def _library(name: str, functions: dict[str, tuple[object, list[object]]]) -> ctypes.CDLL:
    library = ctypes.CDLL(name)
    for function, (result, arguments) in functions.items():
        getattr(library, function).restype = result
        getattr(library, function).argtypes = arguments
    return library


_base = _library("libsphinxbase.so.3", {
    "cmd_ln_parse_r": (c_void_p, [c_void_p, c_void_p, c_int32, POINTER(c_char_p), c_int32]),
    "ngram_model_read": (c_void_p, [c_void_p, c_char_p, c_int, c_void_p]),
    "ngram_model_set_init": (c_void_p, [c_void_p, POINTER(c_void_p), POINTER(c_char_p), POINTER(c_float), c_int32]),
    "ngram_model_set_interp": (c_void_p, [c_void_p, POINTER(c_char_p), POINTER(c_float)]),
})
_sphinx = _library("libpocketsphinx.so.3", {
    "ps_args": (c_void_p, []),
    "ps_init": (c_void_p, [c_void_p]),
    "ps_free": (c_int, [c_void_p]),
    "ps_start_utt": (c_int, [c_void_p]),
    "ps_process_raw": (c_int, [c_void_p, POINTER(c_int16), c_size_t, c_int, c_int]),
    "ps_end_utt": (c_int, [c_void_p]),
    "ps_get_hyp": (c_char_p, [c_void_p, POINTER(c_int32)]),
    "ps_get_logmath": (c_void_p, [c_void_p]),
    "ps_add_word": (c_int, [c_void_p, c_char_p, c_char_p, c_int]),
    "ps_set_lm": (c_int, [c_void_p, c_char_p, c_void_p]),
    "ps_set_search": (c_int, [c_void_p, c_char_p]),
})


def _unigrams(words: list[str]) -> str:
    """A language model in which each of the words is as likely as the others."""
    share = np.log10(0.9 / len(words))
    rows = "".join(f"{share:.4f}\t{word}\t0\n" for word in words)
    return f"\\data\\\nngram 1={len(words) + 2}\n\n\\1-grams:\n-1.0\t</s>\t0\n-99\t<s>\t0\n{rows}\n\\end\\\n"


class Decoder:
    """A recogniser with the model of a folder. Words can be added before the first utterance only."""

    def __init__(self, folder: Path) -> None:
        self._language_model = str(folder / "de.lm.bin").encode()
        arguments = ["decoder", "-hmm", str(folder), "-dict", str(folder / "de.dic"), "-logfn", "/dev/null"]
        arguments += ["-lm", str(folder / "de.lm.bin")]
        for line in (folder / "decoder.options").read_text(encoding="utf-8").splitlines():
            name, value = line.split()
            arguments += [f"-{name}", value]
        # The library keeps pointing into the strings.
        self._arguments = (c_char_p * len(arguments))(*map(str.encode, arguments))
        self._configuration = _base.cmd_ln_parse_r(None, _sphinx.ps_args(), len(arguments), self._arguments, 1)
        self._decoder = _sphinx.ps_init(self._configuration) if self._configuration else None
        if not self._decoder:
            raise ValueError(f"PocketSphinx does not take the model in {folder}")

    def close(self) -> None:
        _sphinx.ps_free(self._decoder)

    def add_words(self, pronunciations: dict[str, str], weight: float) -> None:
        """Mixes the words into the language model, with this share of it.

        Neither `ps_add_word` with update nor `ngram_model_add_word` may be used for it: both crash.
        """
        for word, phones in pronunciations.items():
            if _sphinx.ps_add_word(self._decoder, word.encode(), phones.encode(), 0) < 0:
                raise ValueError(f"PocketSphinx does not take the word {word}")
        with tempfile.NamedTemporaryFile("w", suffix=".arpa") as arpa:
            arpa.write(_unigrams(list(pronunciations)))
            arpa.flush()
            models = (c_void_p * 2)(self._read(self._language_model), self._read(arpa.name.encode()))
        names, weights = (c_char_p * 2)(b"base", b"words"), (c_float * 2)(1 - weight, weight)
        mixed = _base.ngram_model_set_init(self._configuration, models, names, weights, 2)
        _base.ngram_model_set_interp(mixed, names, weights)
        _sphinx.ps_set_lm(self._decoder, b"mixed", mixed)
        _sphinx.ps_set_search(self._decoder, b"mixed")

    def _read(self, path: bytes) -> int:
        return _base.ngram_model_read(self._configuration, path, _FORMAT_UNKNOWN, _sphinx.ps_get_logmath(self._decoder))

    def start(self) -> None:
        _sphinx.ps_start_utt(self._decoder)

    def feed(self, block: np.ndarray) -> str:
        """16-bit samples at 16 kHz; what has been understood so far."""
        samples = np.ascontiguousarray(block).ctypes.data_as(POINTER(c_int16))
        _sphinx.ps_process_raw(self._decoder, samples, len(block), 0, 0)
        return self._text()

    def finish(self) -> str:
        _sphinx.ps_end_utt(self._decoder)
        return self._text()

    def _text(self) -> str:
        return (_sphinx.ps_get_hyp(self._decoder, ctypes.byref(c_int32())) or b"").decode()
