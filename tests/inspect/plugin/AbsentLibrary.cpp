/// A library that IncompletePlugin needs, and that its tests do not install.

extern "C" __attribute__((visibility("default"))) int absentFunction()
{
    return 1;
}
