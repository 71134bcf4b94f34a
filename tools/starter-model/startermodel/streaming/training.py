"""Training by CTC loss in two processes that share every step, with a schedule fixed by the number of epochs.

Threads would be the usual way, but spend their time waiting for each other in an LSTM this small.
"""

import random
import tempfile
import time
from collections.abc import Callable
from dataclasses import dataclass
from pathlib import Path

import numpy as np
import torch
from torch import distributed, nn
from torch.multiprocessing import start_processes

from .features import Corpus
from .letters import TOKENS
from .network import STACKED_FRAMES, Encoder

_WORKERS = 2
_SEED = 1
_FRAMES_PER_BATCH = 3_000
_LONGEST_FRAMES = 1_600
_HIGHEST_RATE, _LOWEST_SHARE = 2e-3, 0.02
_WARM_UP_STEPS = 200
_STEEPEST_GRADIENT = 5
_SILENT_ENERGY = -12.0


@dataclass(frozen=True)
class Plan:
    width: int
    epochs: int


def _batches(lengths: list[int], source: random.Random) -> list[list[int]]:
    """Recordings of about the same length together, so that little is padded; as many for each worker."""
    usable = [index for index, length in enumerate(lengths) if length <= _LONGEST_FRAMES]
    order = sorted(usable, key=lambda index: lengths[index] + source.random() * 60)
    batches: list[list[int]] = [[]]
    for index in order:
        if (len(batches[-1]) + 1) * lengths[index] > _FRAMES_PER_BATCH:
            batches.append([])
        batches[-1].append(index)
    source.shuffle(batches)
    return batches[: len(batches) // _WORKERS * _WORKERS]


def _input(frames: list[np.ndarray], is_masking: bool, source: random.Random) -> torch.Tensor:
    """Padded frames, each recording at a loudness of its own; later also with a band or a moment missing."""
    length = -(-max(map(len, frames)) // STACKED_FRAMES) * STACKED_FRAMES
    padded = np.full((len(frames), length, frames[0].shape[1]), _SILENT_ENERGY, np.float32)
    for row, each in zip(padded, frames):
        row[: len(each)] = each + source.gauss(0, 0.7)
        if is_masking:
            band, moment = source.randint(0, 70), source.randint(0, len(each))
            row[:, band : band + source.randint(0, 12)] = -6
            row[moment : moment + source.randint(0, 12)] = -6
    return torch.from_numpy(padded)


def _rate(step: int, steps: int) -> float:
    """Warms up, stays for half of the steps, then falls in a straight line."""
    falling = 2 * (1 - step / steps)
    return _HIGHEST_RATE * min(1.0, (step + 1) / _WARM_UP_STEPS, max(_LOWEST_SHARE, falling))


def _loss(encoder: Encoder, corpus: Corpus, batch: list[int], is_masking: bool, source: random.Random) -> torch.Tensor:
    frames = [corpus.frames[index] for index in batch]
    targets = [corpus.tokens[index] for index in batch]
    probabilities, _, _ = encoder(_input(frames, is_masking, source), *encoder.initial_state(len(batch)))
    return nn.functional.ctc_loss(
        probabilities.transpose(0, 1),
        torch.tensor([token for target in targets for token in target]),
        torch.tensor([len(each) // STACKED_FRAMES for each in frames]),
        torch.tensor([len(target) for target in targets]),
        zero_infinity=True,
    )


def _share_gradients(encoder: Encoder) -> None:
    """Every worker goes on with the mean of all."""
    gradients = [parameter.grad for parameter in encoder.parameters()]
    together = nn.utils.parameters_to_vector(gradients)
    distributed.all_reduce(together)
    nn.utils.vector_to_parameters(together / _WORKERS, gradients)


def _learn(encoder: Encoder, optimiser: torch.optim.Optimizer, loss: torch.Tensor, rate: float) -> None:
    for group in optimiser.param_groups:
        group["lr"] = rate
    optimiser.zero_grad()
    loss.backward()
    _share_gradients(encoder)
    nn.utils.clip_grad_norm_(encoder.parameters(), _STEEPEST_GRADIENT)
    optimiser.step()


@dataclass(frozen=True)
class Task:
    corpus: Corpus
    plan: Plan
    #: Where the state is put after every epoch; a training that was interrupted goes on from it.
    saved: Path
    #: Asked after every epoch, for the log.
    measure: Callable[[Encoder], str]


def _work(worker: int, task: Task, meeting_point: str) -> None:
    """All workers draw the same batches and take turns in them."""
    torch.set_num_threads(1)
    distributed.init_process_group("gloo", f"file://{meeting_point}", rank=worker, world_size=_WORKERS)
    torch.manual_seed(_SEED)
    encoder = Encoder(len(TOKENS), task.plan.width)
    optimiser = torch.optim.Adam(encoder.parameters())
    first_epoch = _restore(task.saved, encoder, optimiser)
    distributed.barrier()  # nobody saves before all have read
    for epoch in range(first_epoch, task.plan.epochs):
        started = time.monotonic()
        loss = _epoch(epoch, worker, task, encoder, optimiser)
        if worker == 0:
            _save(task.saved, encoder, optimiser, epoch + 1)
            minutes = (time.monotonic() - started) / 60
            print(f"  epoch {epoch + 1} {minutes:.1f} min loss {loss:.3f} {task.measure(encoder)}", flush=True)


def _epoch(epoch: int, worker: int, task: Task, encoder: Encoder, optimiser: torch.optim.Optimizer) -> float:
    """The mean loss of this worker's batches."""
    corpus, epochs = task.corpus, task.plan.epochs
    torch.manual_seed(_SEED + _WORKERS * epoch + worker)
    own = random.Random(f"{_SEED} {epoch} {worker}")
    batches = _batches([len(frames) for frames in corpus.frames], random.Random(f"{_SEED} {epoch}"))[worker::_WORKERS]
    encoder.train()
    losses = []
    for index, batch in enumerate(batches):
        loss = _loss(encoder, corpus, batch, epoch > 0, own)
        _learn(encoder, optimiser, loss, _rate(epoch * len(batches) + index, epochs * len(batches)))
        losses.append(loss.item())
    encoder.eval()
    return float(np.mean(losses))


def _save(saved: Path, encoder: Encoder, optimiser: torch.optim.Optimizer, epochs: int) -> None:
    unfinished = saved.with_suffix(".new")
    torch.save({"network": encoder.state_dict(), "optimiser": optimiser.state_dict(), "epochs": epochs}, unfinished)
    unfinished.replace(saved)


def _restore(saved: Path, encoder: Encoder, optimiser: torch.optim.Optimizer) -> int:
    """How many epochs have been done before."""
    if not saved.exists():
        return 0
    state = torch.load(saved)
    encoder.load_state_dict(state["network"])
    optimiser.load_state_dict(state["optimiser"])
    return state["epochs"]


def train(task: Task) -> None:
    with tempfile.TemporaryDirectory() as folder:
        # Forked, the workers read the corpus where it is.
        start_processes(_work, (task, f"{folder}/meeting-point"), nprocs=_WORKERS, start_method="fork")


def load(saved: Path, plan: Plan) -> Encoder:
    encoder = Encoder(len(TOKENS), plan.width)
    encoder.load_state_dict(torch.load(saved)["network"])
    return encoder.eval()
