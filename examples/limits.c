/* Shows what a parameter accepts and what sets its limits, and sets a value that is refused: limits [NAME [VALUE]] */
#include <vexo/vexo.h>

#include <stdio.h>
#include <stdlib.h>

int main(int count, char** arguments) {
    const char* name = count > 1 ? arguments[1] : "FG_XOFFSET";
    const char* value = count > 2 ? arguments[2] : "20000";
    const vexo_options options = {.size = sizeof options, .board = VEXO_OFFLINE};
    vexo_station* station = NULL;
    if (vexo_open(&options, &station) != VEXO_OK) {
        fprintf(stderr, "%s\n", vexo_last_error());
        return EXIT_FAILURE;
    }

    /* What the record of the parameter says now. */
    const int id = vexo_id(station, name);
    vexo_range range;
    if (vexo_get_range(station, id, &range) != VEXO_OK) {
        fprintf(stderr, "%s\n", vexo_last_error());
        vexo_close(station);
        return EXIT_FAILURE;
    }
    printf("%s: %g to %g in steps of %g\n", name, range.minimum, range.maximum, range.step);

    /* What its setter accepts, and which other parameters move the limits. */
    vexo_answer* answer = NULL;
    if (vexo_ask_limits(station, name, NULL, NULL, &answer) == VEXO_OK) puts(vexo_answer_text(answer));
    vexo_answer_free(answer);

    const int code = vexo_set_text(station, id, value);
    if (code == VEXO_OK)
        printf("%s=%s was accepted\n", name, value);
    else
        printf("%s\n%s\n", vexo_last_error(), vexo_last_details());
    vexo_close(station);
    return EXIT_SUCCESS;
}
