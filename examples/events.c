/* Connects a square wave to an input and waits for its edges: events [COUNT] */
#include <vexo/vexo.h>

#include <stdio.h>
#include <stdlib.h>

static int give_up(vexo_station* station) {
    fprintf(stderr, "%s\n", vexo_last_error());
    vexo_close(station);
    return EXIT_FAILURE;
}

int main(int count, char** arguments) {
    const int wanted = count > 1 ? atoi(arguments[1]) : 3;
    vexo_station* station = NULL;
    if (vexo_open(NULL, &station) != VEXO_OK) return give_up(station);

    uint64_t rising = 0, falling = 0;
    if (vexo_event_mask(station, "FG_TRIGGER_INPUT2_RISING", &rising) != VEXO_OK ||
        vexo_event_mask(station, "FG_TRIGGER_INPUT2_FALLING", &falling) != VEXO_OK ||
        vexo_wave(station, "GPI_2=square:10ms,2ms") != VEXO_OK)
        return give_up(station);

    for (int i = 0; i < wanted; ++i) {
        vexo_event event;
        /* A second of the station's time, which is stepped here: the wait itself advances it. */
        if (vexo_wait_event(station, rising | falling, 1.0, -1, &event, NULL) != VEXO_OK)
            return give_up(station);
        printf("%10.6f ms  %s\n", 1e3 * (double)event.tick / VEXO_TICKS_PER_SECOND, event.name);
    }
    vexo_close(station);
    return EXIT_SUCCESS;
}
