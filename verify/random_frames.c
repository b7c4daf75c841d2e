/*
 * Prints a digest of random frames: their records, the statistics converted between them, and their makernotes. It is
 * the same whatever built the library, on every processor and on 32 and 64 bits. Fails where another one is expected.
 *
 *   random_frames COUNT CONTAINER [EXPECTED]
 */
#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "qz_isp/qz_isp.h"
#include "qz_mkn.h"

enum { frames_of_a_context = 32, most_points = 64, most_side = 24, columns = 9, rows = 7 };

static uint32_t state = 1;

static uint32_t below(uint32_t limit)
{
    state = state * 1664525u + 1013904223u;
    return (uint32_t)(((uint64_t)limit * (state >> 8)) >> 24);
}

/* Every value and step of it is exact. */
static float between(int low, int high)
{
    return (float)low + (float)below(4096u * (uint32_t)(high - low)) / 4096.0f;
}

static void fill(float *values, uint32_t count, int low, int high)
{
    for (uint32_t i = 0; i < count; ++i)
        values[i] = between(low, high);
}

/* Null now and then. */
static const void *or_null(const void *pointer)
{
    return below(8) == 0 ? NULL : pointer;
}

static int8_t strength(void)
{
    return (int8_t)((int)below(256) - 128);
}

static uint64_t digest = 0xcbf29ce484222325u;

static void add(const void *data, size_t size)
{
    for (const unsigned char *byte = data; size > 0; ++byte, --size)
        digest = (digest ^ *byte) * 0x100000001b3u;
}

/* The words of the shading tables as they are on 64 bits. */
static void add_record(const isp_output_desc *output)
{
    aic_record record = *output->record;
    for (int c = 0; c < 4; ++c)
        if (sizeof(void *) == 4 && record.lens_shading.payload.table[c] != 0)
            record.lens_shading.payload.table[c] -= (uint32_t)(uintptr_t)output->record;
    add(&record, output->bytes_used);
}

static void run_frame(isp_context *context)
{
    static float curves[3][most_points], grids[4][most_side * most_side];
    fill(curves[0], 3 * most_points, 0, 1);
    fill(grids[0], 4 * most_side * most_side, 0, below(8) == 0 ? 70 : 4);

    const isp_frame_desc frame = {{{1, 2}, (uint16_t)(320 + below(4000)), (uint16_t)(240 + below(3000))},
                                  (uint8_t)(1 + below(3)),
                                  (uint8_t)(1 + below(3)),
                                  (uint8_t)(1 + below(3)),
                                  (uint8_t)(1 + below(3))};
    const isp_exposure exposure = {0, between(0, 40), between(0, 8)};
    const isp_scene_params scene = {{0}, below(8), between(-1, 2)};
    isp_gamma_params gamma = {{or_null(curves[0]), or_null(curves[1]), or_null(curves[2])}, 2 + below(most_points - 1)};
    isp_colour_params colour = {{0}, {0}, {0}, {0}, between(-1, 3), between(0, 1)};
    fill(colour.ccm, 9, -2, below(8) == 0 ? 90 : 3);
    fill(colour.black_level, 4, 0, 300);
    fill(colour.white_balance_gain, 4, 0, 8);
    const isp_lsc_params lsc = {{grids[0], grids[1], grids[2], grids[3]},
                                (uint16_t)(2 + below(most_side - 1)),
                                (uint16_t)(2 + below(most_side - 1)),
                                below(8) != 0,
                                {0}};
    const isp_geometry aux = {{0}, (uint16_t)below(4000), (uint16_t)below(3000)};
    const isp_input_params input = {
        .tuning_mode = below(4),
        .frame = or_null(&frame),
        .exposure = or_null(&exposure),
        .scene = or_null(&scene),
        .gamma = or_null(&gamma),
        .colour = or_null(&colour),
        .lsc = or_null(&lsc),
        .gamma_257 = below(2),
        .nr_mode = below(4),
        .nr_strength = strength(),
        .edge_mode = below(3),
        .sharpness = strength(),
        .brightness = strength(),
        .contrast = strength(),
        .hue = strength(),
        .saturation = strength(),
        .effects = below(4) == 0 ? 1u << below(32) : 0,
        .block9_control = (uint8_t)below(256),
        .aux_size = or_null(&aux),
    };
    isp_output_desc output = {NULL, 0};
    const uint32_t status = qz_isp_2_7_run(context, &input, &output);
    add(&status, sizeof status);
    if (status == ISP_SUCCESS)
        add_record(&output);
}

static void convert_statistics(isp_context *context)
{
    isp_stats_cell cells[columns * rows] = {{0}};
    for (int i = 0; i < columns * rows; ++i) {
        cells[i].count = (int32_t)below(300);
        for (int c = 0; c < 4; ++c)
            cells[i].channel_sum[c] = (int32_t)below(1u << 18);
        cells[i].filter_1_response = below(1u << 24);
        cells[i].filter_2_response = below(1u << 24);
    }
    const isp_stats stats = {.width = columns,
                             .height = rows,
                             .af_block_size = 8,
                             .cell_size_exponent = 4,
                             .bit_depth = 8 + below(5),
                             .cells = cells};
    const rgbs_grid_desc *rgbs = NULL;
    const af_grid_desc *af = NULL;
    if (qz_isp_2_7_statistics_convert(context, &stats, &rgbs, &af) != ISP_SUCCESS)
        exit(1);
    add(rgbs->cells, sizeof *rgbs->cells * columns * rows);
    add(af->filter_1, sizeof *af->filter_1 * columns * rows);
    add(af->filter_2, sizeof *af->filter_2 * columns * rows);
}

static void add_makernote(const qz_mkn *makernote)
{
    qz_mkn_record record;
    for (uint32_t i = 0; qz_mkn_get_record(makernote, i, &record); ++i)
        add(record.data, record.size);
}

static void run_context(const isp_blob *container, int frames)
{
    isp_sensor_description sensor = {{0}, 3264, 2448, (uint16_t)(8 + below(6)), 0};
    const isp_cmc cmc = {NULL, NULL, &sensor, NULL, NULL};
    qz_mkn *const makernote = qz_mkn_create();
    isp_context *const context = qz_isp_2_7_init(container, columns, rows, &cmc, makernote);
    if (context == NULL)
        exit(1);
    for (int i = 0; i < frames; ++i) {
        run_frame(context);
        convert_statistics(context);
    }
    add_makernote(makernote);
    qz_isp_2_7_deinit(context);
    qz_mkn_destroy(makernote);
}

int main(int argc, char **argv)
{
    static unsigned char bytes[1 << 20];
    FILE *const file = argc >= 3 ? fopen(argv[2], "rb") : NULL;
    if (file == NULL)
        return 2;
    const isp_blob container = {bytes, (uint32_t)fread(bytes, 1, sizeof bytes, file)};
    fclose(file);
    for (int left = atoi(argv[1]); left > 0; left -= frames_of_a_context)
        run_context(&container, left < frames_of_a_context ? left : frames_of_a_context);
    printf("%s frames: %016" PRIx64 "\n", argv[1], digest);
    return argc > 3 && strtoull(argv[3], NULL, 16) != digest;
}
