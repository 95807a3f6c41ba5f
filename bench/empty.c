/* A library in which there is nothing: what loading any library costs. */
int tzvio_empty = 0;
