// Belongs to the precompiled headers of the tests, which need a program that owns them.
int main() {
    return 0;
}
