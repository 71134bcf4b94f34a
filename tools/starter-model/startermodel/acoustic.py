"""Acoustic training with sphinxtrain's stage scripts, and the model folder that comes of it.

The stages are called one by one: Debian's `sphinxtrain` wrapper looks for them in the wrong folder, and the
scripts need Perl's old habit of finding modules in the current folder.
"""

import os
import re
import subprocess
from dataclasses import dataclass
from pathlib import Path

import numpy as np

from .speech import Recording

_HOME = Path("/usr/lib/x86_64-linux-gnu/sphinxtrain")
_PROGRAMS = Path("/usr/lib/sphinxtrain")
_NAME = "de"
_STAGES = (
    "000.comp_feat/slave_feat.pl",
    "00.verify/verify_all.pl",
    "20.ci_hmm/slave_convg.pl",
    "30.cd_hmm_untied/slave_convg.pl",
    "40.buildtrees/slave.treebuilder.pl",
    "45.prunetree/slave.state-tying.pl",
    "50.cd_hmm_tied/slave_convg.pl",
)
_CEPSTRA = 13
_MODEL_FILES = "mdef means variances mixture_weights transition_matrices feat.params noisedict".split()


@dataclass(frozen=True)
class Size:
    """Of a continuous model: tied states, and Gaussians per state (a power of two)."""

    senones: int
    densities: int


def _configuration(folder: Path, size: Size) -> str:
    """sphinxtrain's own configuration with our settings in it."""
    text = (_HOME / "etc/sphinx_train.cfg").read_text(encoding="utf-8")
    places = {"DB_NAME": _NAME, "BASE_DIR": folder, "SPHINXTRAIN_DIR": _HOME, "SPHINXTRAIN_BIN_DIR": _PROGRAMS}
    for place, value in places.items():
        text = text.replace(f"___{place}___", str(value))
    settings = {
        r"\$CFG_HMM_TYPE": "'.cont.'",
        r"\$CFG_N_TIED_STATES": size.senones,
        r"  \$CFG_FINAL_NUM_DENSITIES(?= = 8)": size.densities,
        r"\$CFG_NPART": 2,
        r"\$CFG_QUEUE_TYPE": '"Queue::POSIX"',
        r"\$CFG_MAX_ITERATIONS": 6,
        r"\$CFG_CONVERGENCE_RATIO": 0.06,
        r"\$CFG_LDA_MLLT": "'no'",
    }
    for setting, value in settings.items():
        text, count = re.subn(rf"^({setting}) = [^;]*;", rf"\1 = {value};", text, flags=re.MULTILINE)
        if count != 1:
            raise ValueError(f"{setting} occurs {count} times in sphinxtrain's configuration")
    return text


def prepare(folder: Path, recordings: list[Recording], dictionary: Path, phones: Path, size: Size) -> None:
    """Lays out what the stages read."""
    etc = folder / "etc"
    etc.mkdir(parents=True, exist_ok=True)
    speech = folder / "wav"
    speech.unlink(missing_ok=True)
    speech.symlink_to(recordings[0].path.parent.resolve())
    files = {
        "sphinx_train.cfg": _configuration(folder, size),
        "feat.params": (_HOME / "etc/feat.params").read_text(encoding="utf-8"),
        f"{_NAME}.dic": dictionary.read_text(encoding="utf-8"),
        f"{_NAME}.phone": phones.read_text(encoding="utf-8"),
        f"{_NAME}.filler": "<s> SIL\n</s> SIL\n<sil> SIL\n",
        f"{_NAME}.lm.DMP": "",  # only looked for, never read
        f"{_NAME}_train.fileids": "".join(f"{each.path.stem}\n" for each in recordings),
        f"{_NAME}_train.transcription": "".join(
            f"<s> {each.aligned} </s> ({each.path.stem})\n" for each in recordings
        ),
    }
    for name, text in files.items():
        (etc / name).write_text(text, encoding="utf-8")


def train(folder: Path) -> None:
    environment = os.environ | {"PERL_USE_UNSAFE_INC": "1"}
    with (folder / "training.log").open("w") as log:
        for stage in _STAGES:
            print(f"  {stage.split('/')[0]}", flush=True)
            subprocess.run([_HOME / "scripts" / stage], cwd=folder, env=environment, stdout=log, stderr=log, check=True)


def mean_cepstra(folder: Path) -> list[float]:
    """The training speech's mean, where the decoder's running mean starts ("cmninit")."""
    total, frames = np.zeros(_CEPSTRA), 0
    for path in (folder / "feat").glob("*.mfc"):
        cepstra = np.fromfile(path, dtype="<f4", offset=4).reshape(-1, _CEPSTRA)
        total += cepstra.sum(axis=0)
        frames += len(cepstra)
    return [float(value) for value in total / frames]


def package(folder: Path, size: Size, target: Path) -> None:
    """Copies the model; its definition in the binary form, a fifth of the text's size."""
    target.mkdir(parents=True, exist_ok=True)
    model = folder / "model_parameters" / f"{_NAME}.cd_cont_{size.senones}"
    for name in _MODEL_FILES:
        (target / name).write_bytes((model / name).read_bytes())
    subprocess.run(
        ["pocketsphinx_mdef_convert", "-bin", model / "mdef", target / "mdef"], check=True, capture_output=True
    )
