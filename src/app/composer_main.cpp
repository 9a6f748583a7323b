#include <cstdio>

// The composer window is not built yet; this entry point exists so the build layout is final.
int main() {
    std::fprintf(stderr, "mms-composer: the composer window is not available in this build yet\n");
    return 1;
}
