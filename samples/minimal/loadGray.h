/* Stands for a program's own image reader. */
#ifndef LOAD_GRAY_H
#define LOAD_GRAY_H

#ifdef __cplusplus
extern "C" {
#endif

/* The gray image samples/desk-rig/<side>_<view>.png, rows without padding; NULL when it cannot be read. The reader
   keeps the pixels. */
const unsigned char* loadGray(const char* side, int view);

#ifdef __cplusplus
}
#endif

#endif
