// Writes one byte behind a block and frees it. The block's size is a multiple of 8, so nothing pads it.
int main() {
    volatile char* const block = new char[40];
    block[40] = 1;
    delete[] block;
}
