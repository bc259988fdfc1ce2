// Keeps the window library linkable while it has no widgets of its own.
