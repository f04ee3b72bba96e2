# One line per fuzz target: qb_add_fuzzer(name DEPS libraries...)
