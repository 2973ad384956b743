// A fault that clang-tidy finds and cppcheck doesn't: a counter too narrow for its limit.
int CountSet(const unsigned char* Bytes, unsigned Count)
{
    int Set = 0;
    for (unsigned char At = 0; At < Count; At++) {
        Set += Bytes[At] != 0 ? 1 : 0;
    }
    return Set;
}
