// Only the headers, which the test programs take compiled (CMakeLists.txt).
