"""The parts of the invented macOS source, one kind of file each."""
