// Stands for the tests' precompiled headers, which need a program to belong to.
int main() {
    return 0;
}
