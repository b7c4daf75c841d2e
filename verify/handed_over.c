/*
 * A library to load before libqz_isp: writes what a program hands over as a C program that does the same and prints the
 * records, for where the first program does not run. It goes to the file that QZ_HANDED_OVER names.
 */
#define _GNU_SOURCE // for RTLD_NEXT; NOLINT(bugprone-reserved-identifier)
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>

#include "qz_isp/qz_isp.h"

static FILE *out;

/* A statement that gives target, a pointer or its declaration, the address of a copy of data. */
static void point(const char *target, const void *data, size_t size)
{
    static int copies;
    if (data == NULL) {
        fprintf(out, "%s = 0;\n", target);
        return;
    }
    fprintf(out, "static const unsigned char copy_%d[] __attribute__((aligned(8))) = {", ++copies);
    for (size_t i = 0; i < size; ++i)
        fprintf(out, "%u,", ((const unsigned char *)data)[i]);
    fprintf(out, "0};\n%s = (void *)copy_%d;\n", target, copies);
}

static void point_each(const char *member, const float *const *arrays, int count, size_t elements)
{
    char target[32];
    for (int i = 0; i < count; ++i) {
        snprintf(target, sizeof target, "%s[%d]", member, i);
        point(target, arrays[i], elements * sizeof *arrays[i]);
    }
}

__attribute__((visibility("default"))) isp_context *qz_isp_2_7_init(const isp_blob *container, uint32_t grid_width,
                                                                    uint32_t grid_height, const isp_cmc *cmc,
                                                                    struct qz_mkn *makernote)
{
    out = fopen(getenv("QZ_HANDED_OVER"), "w");
    fputs("#include <stdio.h>\n#include \"qz_isp/qz_isp.h\"\nint main(void)\n{\nisp_cmc cmc = {0};\n", out);
    point("const void *bytes", container->data, container->size);
    if (cmc != NULL) {
        point("cmc.sensor_description", cmc->sensor_description, sizeof *cmc->sensor_description);
        point("cmc.entry_table_header", cmc->entry_table_header, sizeof *cmc->entry_table_header);
        if (cmc->entry_table_header != NULL)
            point("cmc.entry_table", cmc->entry_table, (size_t)16 * cmc->entry_table_header->entry_count);
    }
    fprintf(out, "isp_blob container = {bytes, %u};\n", container->size);
    fprintf(out, "isp_context *context = qz_isp_2_7_init(&container, %u, %u, %s, 0);\n", grid_width, grid_height,
            cmc != NULL ? "&cmc" : "0");

    typedef isp_context *init(const isp_blob *, uint32_t, uint32_t, const isp_cmc *, struct qz_mkn *);
    init *const next = (init *)dlsym(RTLD_NEXT, "qz_isp_2_7_init");
    return next(container, grid_width, grid_height, cmc, makernote);
}

__attribute__((visibility("default"))) uint32_t qz_isp_2_7_run(isp_context *context, const isp_input_params *input,
                                                               isp_output_desc *output)
{
    fputs("{\n", out);
    point("const isp_input_params *read", input, sizeof *input);
    fputs("isp_input_params input = *read;\n", out);
    point("input.frame", input->frame, sizeof *input->frame);
    point("input.exposure", input->exposure, sizeof *input->exposure);
    point("input.scene", input->scene, sizeof *input->scene);
    point("input.colour", input->colour, sizeof *input->colour);
    point("input.aux_size", input->aux_size, sizeof *input->aux_size);
    point("input.selection_list", input->selection_list, sizeof *input->selection_list);
    point("input.gamma", input->gamma, sizeof *input->gamma);
    point("input.lsc", input->lsc, sizeof *input->lsc);
    if (input->gamma != NULL) {
        fputs("isp_gamma_params gamma = *input.gamma;\ninput.gamma = &gamma;\n", out);
        point_each("gamma.curve", input->gamma->curve, 3, input->gamma->point_count);
    }
    if (input->lsc != NULL) {
        fputs("isp_lsc_params lsc = *input.lsc;\ninput.lsc = &lsc;\n", out);
        point_each("lsc.grid", input->lsc->grid, 4, (size_t)input->lsc->width * input->lsc->height);
    }
    fputs("isp_output_desc output = {0, 0};\nif (qz_isp_2_7_run(context, &input, &output) != 0)\nreturn 1;\n"
          "fwrite(output.record, 1, output.bytes_used, stdout);\n}\n",
          out);

    typedef uint32_t run(isp_context *, const isp_input_params *, isp_output_desc *);
    run *const next = (run *)dlsym(RTLD_NEXT, "qz_isp_2_7_run");
    return next(context, input, output);
}

__attribute__((destructor)) static void close_program(void)
{
    if (out != NULL)
        fputs("return 0;\n}\n", out);
}
