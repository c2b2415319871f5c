# reading: a byte stream becomes a table, on a thread of its own.
