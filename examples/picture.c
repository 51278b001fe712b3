/* Takes a picture of the camera simulator on a virtual board, and writes it as a PPM file: picture FILE */
#include <vexo/vexo.h>

#include <stdio.h>
#include <stdlib.h>

static int give_up(const char* what) {
    fprintf(stderr, "%s: %s\n", what, vexo_last_error());
    return EXIT_FAILURE;
}

static int write_ppm(const char* name, const vexo_picture* picture, const uint16_t* pixels) {
    FILE* file = fopen(name, "wb");
    if (file == NULL) return -1;
    fprintf(file, "P6\n%u %u\n255\n", picture->width, picture->height);
    const size_t count = (size_t)3 * picture->width * picture->height;
    for (size_t i = 0; i < count; ++i)
        fputc(pixels[i] >> (picture->bits - 8), file);
    return fclose(file);
}

int main(int count, char** arguments) {
    if (count != 2) return fputs("give the name of the file\n", stderr), EXIT_FAILURE;
    vexo_station* station = NULL;
    if (vexo_open(NULL, &station) != VEXO_OK) return give_up("open");

    const char* settings[] = {"FG_WIDTH=640", "FG_HEIGHT=480",
                              "FG_CAMERASIMULATOR_ENABLE=FG_CAMERASIMULATOR"};
    if (vexo_set_all(station, settings, 3, VEXO_GIVEN_ORDER) != VEXO_OK) return give_up("set");

    vexo_picture picture;
    if (vexo_start(station, 1, VEXO_KEEP) != VEXO_OK) return give_up("start");
    if (vexo_wait_picture(station, 0, 1.0, -1, &picture) != VEXO_OK) return give_up("wait");

    void* bytes = malloc(picture.size);
    uint16_t* pixels = malloc(sizeof *pixels * 3 * picture.width * picture.height);
    if (bytes == NULL || pixels == NULL) return EXIT_FAILURE;
    if (vexo_render(station, picture.number, bytes, picture.size) != VEXO_OK) return give_up("render");
    if (vexo_unpack(&picture, bytes, pixels) != VEXO_OK) return give_up("unpack");
    if (write_ppm(arguments[1], &picture, pixels) != 0) return perror(arguments[1]), EXIT_FAILURE;
    printf("%s: %u x %u pixels, complete at tick %llu\n", arguments[1], picture.width, picture.height,
           (unsigned long long)picture.arrival);

    free(pixels);
    free(bytes);
    vexo_close(station);
    return EXIT_SUCCESS;
}
