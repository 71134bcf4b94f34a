"""What tools/demonstrate is made of: the program under way, an editor, a voice, and scenes with them."""
