// A fault that cppcheck finds and the chosen checks of clang-tidy don't: a read behind the end of an array.
int Classify(unsigned Value)
{
    char Name[4] = {};
    for (unsigned At = 0; At < 4; At++) {
        Name[At] = static_cast<char>(Value >> (8 * At));
    }
    return Name[4];
}
