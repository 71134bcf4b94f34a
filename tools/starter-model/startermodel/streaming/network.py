"""The network: four frames at a time (40 ms) through an LSTM to the probabilities of the letters."""

import torch
from torch import nn

from .features import BINS

STACKED_FRAMES = 4
LAYERS = 2
_DROPOUT = 0.1
#: Brings log-mel energies to about -1 … 1.
_OFFSET, _SCALE = 6.0, 4.0

State = tuple[torch.Tensor, torch.Tensor]


class Encoder(nn.Module):
    """Frames [N, T, 80] and both LSTM states [layers, N, width] to log-probabilities [N, T/4, tokens]."""

    def __init__(self, tokens: int, width: int) -> None:
        super().__init__()
        self.width = width
        self.input = nn.Linear(STACKED_FRAMES * BINS, width)
        self.lstm = nn.LSTM(width, width, LAYERS, batch_first=True, dropout=_DROPOUT)
        self.output = nn.Linear(width, tokens)

    def forward(
        self, x: torch.Tensor, h: torch.Tensor, c: torch.Tensor
    ) -> tuple[torch.Tensor, torch.Tensor, torch.Tensor]:
        batch, frames, _ = x.shape
        stacked = ((x + _OFFSET) / _SCALE).reshape(batch, frames // STACKED_FRAMES, STACKED_FRAMES * BINS)
        hidden, (h, c) = self.lstm(torch.relu(self.input(stacked)), (h, c))
        return torch.log_softmax(self.output(hidden), -1), h, c

    def initial_state(self, batch: int) -> State:
        return torch.zeros(LAYERS, batch, self.width), torch.zeros(LAYERS, batch, self.width)


class Decoder(nn.Module):
    """Remembers the last token given out, as a row with a single one; nothing for blank."""

    def __init__(self, tokens: int) -> None:
        super().__init__()
        rows = torch.eye(tokens)
        rows[0] = 0
        self.register_buffer("rows", rows)

    def forward(self, y: torch.Tensor) -> torch.Tensor:
        return self.rows[torch.clamp(y[:, -1], min=0)]


class Joiner(nn.Module):
    """CTC's collapse, exactly: the probability of the same token once more belongs to blank."""

    def forward(self, encoder_out: torch.Tensor, decoder_out: torch.Tensor) -> torch.Tensor:
        probability = torch.exp(encoder_out)
        repeated = (probability * decoder_out).sum(-1, keepdim=True)
        to_blank = torch.cat([repeated, torch.zeros_like(encoder_out)[:, 1:]], -1)
        return torch.log(probability * (1 - decoder_out) + to_blank + 1e-8)
