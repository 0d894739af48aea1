// The control of Wine's heap validation: a released block is written, which later calls for the same heap must report.
#include <windows.h>

int main(void) {
    const HANDLE heap = GetProcessHeap();
    char* block = HeapAlloc(heap, 0, 100);
    HeapFree(heap, 0, block);
    block[40] = 'x';
    for (int again = 0; again < 100; ++again)
        HeapFree(heap, 0, HeapAlloc(heap, 0, 100));
    return 0;
}
