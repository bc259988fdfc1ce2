#include <cstdio>

// The local test server grows its protocol in its own change; until then it
// only tells what it is.
int main() {
    std::puts("corvantide-sandbox: the local server is not built yet");
    return 1;
}
