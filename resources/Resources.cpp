// The library holds resources alone; a library needs a source.
