/* Stands for a program's own image reader. */
#ifndef LOAD_GRAY_H
#define LOAD_GRAY_H

#ifdef __cplusplus
extern "C" {
#endif

/* The gray image <side>_<view>, for example left_03, rows without padding; NULL when it cannot be read. The reader
   keeps the pixels. */
const unsigned char* loadGray(const char* side, int view);

#ifdef __cplusplus
}
#endif

#endif
