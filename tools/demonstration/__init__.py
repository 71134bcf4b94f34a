"""The parts of tools/demonstrate: the running program, an editor, a voice, and the scenes."""
