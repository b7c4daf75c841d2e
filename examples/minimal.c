/*
 * The smallest complete user of the library, in plain C: one context, one frame, a few fields of its record.
 *
 *   minimal [CONTAINER]     CONTAINER is a tuning container; without it an empty one is used
 */
#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>

#include "qz_isp/qz_isp.h"

/* A valid container without records: every block takes its defaults. */
static const unsigned char empty_container[24] = {'V', 'U', 'X', 'B'};

/* Reads a whole file into memory that the caller frees; null on failure. */
static void *read_file(const char *name, uint32_t *size)
{
    FILE *file = fopen(name, "rb");
    if (file == NULL)
        return NULL;
    void *bytes = NULL;
    if (fseek(file, 0, SEEK_END) == 0) {
        const long length = ftell(file);
        if (length > 0 && fseek(file, 0, SEEK_SET) == 0)
            bytes = malloc((size_t)length);
        if (bytes != NULL && fread(bytes, 1, (size_t)length, file) != (size_t)length) {
            free(bytes);
            bytes = NULL;
        }
        *size = (uint32_t)length;
    }
    fclose(file);
    return bytes;
}

static int run_frame(const isp_blob *container)
{
    isp_context *context = qz_isp_2_7_init(container, 80, 60, NULL, NULL);
    if (context == NULL) {
        fprintf(stderr, "minimal: the container is not valid\n");
        return 1;
    }

    const isp_frame_desc frame = {{{0, 0}, 1920, 1080}, 1, 1, 1, 1};
    const isp_exposure exposure = {0, 2.0f, 1.0f};
    const isp_input_params input = {
        .tuning_mode = 1, .frame = &frame, .exposure = &exposure, .nr_mode = 2, .edge_mode = 1, .sharpness = 20};
    isp_output_desc output = {NULL, 0};
    const uint32_t status = qz_isp_2_7_run(context, &input, &output);
    if (status == 0) {
        const aic_record *record = output.record;
        printf("bytes in use          %" PRIu32 " of %" PRIu32 "\n", output.bytes_used, isp_get_aic_output_size_2_7());
        printf("frame counter         %" PRIu32 "\n", record->frame_counter.payload.value);
        printf("white balance gain 0  %" PRIu32 "\n", record->white_balance.payload.gain[0]);
        printf("edge enhancement      %" PRIu32 " %" PRIu32 " %" PRIu32 "\n", record->edge_enhancement.payload.param[0],
               record->edge_enhancement.payload.param[1], record->edge_enhancement.payload.param[2]);
    }
    qz_isp_2_7_deinit(context);
    return status == 0 ? 0 : 1;
}

int main(int argc, char **argv)
{
    isp_blob container = {empty_container, sizeof empty_container};
    void *bytes = NULL;
    if (argc > 1) {
        bytes = read_file(argv[1], &container.size);
        if (bytes == NULL) {
            fprintf(stderr, "minimal: cannot read %s\n", argv[1]);
            return 1;
        }
        container.data = bytes;
    }
    const int result = run_frame(&container);
    free(bytes);
    return result;
}
