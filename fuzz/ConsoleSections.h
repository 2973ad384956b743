// Included in front of every source of the console in a fuzzing build: what it can write to stands together.
#pragma clang section bss = "console_bss" data = "console_data"
