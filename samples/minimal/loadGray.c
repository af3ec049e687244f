/* An image reader: gray images of 8 bits in the current folder, left_00.pgm and so on (binary PGM, "P5"). */
#include "loadGray.h"

#include <ctype.h>
#include <stdio.h>
#include <stdlib.h>

/* The next number of the header; blanks and comments, from # to the end of the line, may stand before it. */
static int nextNumber(FILE* file) {
    int letter = getc(file);
    while (isspace(letter) || letter == '#') {
        if (letter == '#') {
            while (letter != '\n' && letter != EOF) {
                letter = getc(file);
            }
        }
        letter = getc(file);
    }
    int number = 0;
    for (; isdigit(letter) && number < 100000; letter = getc(file)) {
        number = 10 * number + (letter - '0');
    }
    /* One blank ends a number, the last one before the pixels too. */
    return isspace(letter) ? number : -1;
}

static unsigned char* readPixels(FILE* file) {
    if (getc(file) != 'P' || getc(file) != '5') {
        return NULL;
    }
    const int width = nextNumber(file);
    const int height = nextNumber(file);
    if (width <= 0 || height <= 0 || nextNumber(file) != 255) {
        return NULL;
    }
    const size_t size = (size_t)width * (size_t)height;
    unsigned char* const pixels = malloc(size);
    if (pixels != NULL && fread(pixels, 1, size, file) != size) {
        free(pixels);
        return NULL;
    }
    return pixels;
}

const unsigned char* loadGray(const char* side, int view) {
    char name[64];
    snprintf(name, sizeof(name), "%s_%02d.pgm", side, view);
    FILE* const file = fopen(name, "rb");
    if (file == NULL) {
        perror(name);
        return NULL;
    }
    const unsigned char* const pixels = readPixels(file);
    fclose(file);
    if (pixels == NULL) {
        fprintf(stderr, "%s: not a gray image of 8 bits (binary PGM)\n", name);
    }
    return pixels;
}
