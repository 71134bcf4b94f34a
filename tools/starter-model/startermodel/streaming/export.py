"""The three ONNX files, with the metadata without which the run-time library crashes or ends the process."""

import warnings
from pathlib import Path

import onnx
import torch
from torch import nn

from . import letters
from .features import BINS
from .network import LAYERS, Decoder, Encoder, Joiner

_OPSET = 13
#: Frames the library hands over at a time.
_CHUNK_FRAMES = 16
_CONTEXT_TOKENS = 2


def _export(
    module: nn.Module, example: tuple[torch.Tensor, ...], path: Path, inputs: list[str], outputs: list[str],
    batch_axes: dict[str, int], metadata: dict[str, object],
) -> None:
    axes = {name: {batch_axes.get(name, 0): "N"} for name in (*inputs, *outputs)}
    with warnings.catch_warnings():
        # It advises to make the LSTM's states inputs, which they are.
        warnings.simplefilter("ignore")
        torch.onnx.export(
            module, example, str(path), opset_version=_OPSET, input_names=inputs, output_names=outputs,
            dynamic_axes=axes,
        )
    model = onnx.load(str(path))
    onnx.helper.set_model_props(model, {key: str(value) for key, value in metadata.items()})
    onnx.save(model, str(path))


def export(encoder: Encoder, folder: Path) -> None:
    folder.mkdir(parents=True, exist_ok=True)
    tokens, row = len(letters.TOKENS), torch.zeros(1, len(letters.TOKENS))
    _export(
        encoder.eval(), (torch.zeros(1, _CHUNK_FRAMES, BINS), *encoder.initial_state(1)), folder / "encoder.onnx",
        ["x", "h", "c"], ["encoder_out", "next_h", "next_c"], {"h": 1, "c": 1, "next_h": 1, "next_c": 1},
        {
            "model_type": "lstm", "version": 1, "num_encoder_layers": LAYERS, "T": _CHUNK_FRAMES,
            "decode_chunk_len": _CHUNK_FRAMES, "rnn_hidden_size": encoder.width, "d_model": encoder.width,
        },
    )
    _export(
        Decoder(tokens), (torch.zeros(1, _CONTEXT_TOKENS, dtype=torch.int64),), folder / "decoder.onnx",
        ["y"], ["decoder_out"], {}, {"vocab_size": tokens, "context_size": _CONTEXT_TOKENS},
    )
    _export(
        Joiner(), (row, row), folder / "joiner.onnx",
        ["encoder_out", "decoder_out"], ["logit"], {}, {"joiner_dim": tokens},
    )
    letters.write(folder)
