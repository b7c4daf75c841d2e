/*
 * Writes the picture record-layout.svg: the AIC output record to scale, from the list of its blocks.
 *
 * Above, the whole record as one strip. Below, its fixed part in rows of 128 bytes; a block's header is dark, its
 * padding is white.
 */
#include <inttypes.h>
#include <stdio.h>
#include <string.h>

#include "qz_isp/aic_record.h"

enum { left = 64, width = 1024, row_bytes = 128, row_height = 22, strip_top = 66, rows_top = 196, legend_top = 30 };
enum { header_bytes = 8 };
static const char line[] = "#444";

/* Lens shading tables of a full-size frame of an 8-megapixel sensor. */
enum { sample_columns = 27, sample_rows = 21 };

/* The families of AIC_BLOCKS. */
enum family { colour, noise_detail, long_table, copied, lens_shading, families };
static const char *const fill[families] = {"#f6c28b", "#a8d5a2", "#a9c7ec", "#d3d3d3", "#e3b7e0"};
static const char *const dark[families] = {"#eda45c", "#83bf7b", "#85add9", "#b4b4b4", "#b56bb0"};
static const char *const meaning[families] = {"colour and gamma", "noise and detail", "long tuning tables",
                                              "copied and fixed", "lens shading"};

struct block {
    const char *name;
    enum family family;
    uint32_t id;
    uint32_t size;
    uint32_t offset;
};

#define BLOCK(name, id, size, offset, payload, padding, family) {#name, family, id, size, offset},
static const struct block blocks[] = {AIC_BLOCKS(BLOCK)};
enum { block_count = sizeof blocks / sizeof blocks[0] };

static void rectangle(double x, double y, double w, double h, const char *paint, const char *outline)
{
    printf("<rect x=\"%.2f\" y=\"%.2f\" width=\"%.2f\" height=\"%.2f\" fill=\"%s\" stroke=\"%s\" "
           "stroke-width=\"0.8\"/>\n",
           x, y, w, h, paint, outline);
}

static void text(double x, double y, const char *anchor, const char *content)
{
    printf("<text x=\"%.2f\" y=\"%.2f\" text-anchor=\"%s\">%s</text>\n", x, y, anchor, content);
}

static void text_bytes(double x, double y, const char *anchor, uint32_t bytes)
{
    char content[16];
    snprintf(content, sizeof content, "%" PRIu32, bytes);
    text(x, y, anchor, content);
}

/* Bytes begin to end, in as many rows as they touch. */
static void draw_bytes(uint32_t begin, uint32_t end, const char *paint, const char *outline)
{
    while (begin < end) {
        const uint32_t row = begin / row_bytes;
        const uint32_t row_end = (row + 1) * row_bytes;
        const uint32_t stop = end < row_end ? end : row_end;
        const double scale = (double)width / row_bytes;
        rectangle(left + begin % row_bytes * scale, rows_top + row * (double)row_height, (stop - begin) * scale,
                  row_height - 3, paint, outline);
        begin = stop;
    }
}

/* The label stands where the block is widest; in the middle row of several as wide. */
static void draw_label(const struct block *block)
{
    const uint32_t end = block->offset + block->size;
    const uint32_t first_row = block->offset / row_bytes;
    const uint32_t last_row = (end - 1) / row_bytes;
    uint32_t begin = block->offset;
    uint32_t length = last_row == first_row ? block->size : row_bytes - block->offset % row_bytes;
    if (last_row - first_row >= 2) {
        begin = (first_row + last_row + 1) / 2 * row_bytes;
        length = row_bytes;
    } else if (last_row > first_row && end - last_row * row_bytes > length) {
        begin = last_row * row_bytes;
        length = end - begin;
    }
    char label[64];
    snprintf(label, sizeof label, "%" PRIu32 " %s", block->id, block->name);
    text(left + (begin % row_bytes + length * 0.5) * width / row_bytes,
         rows_top + begin / row_bytes * (double)row_height + 13.5, "middle", label);
}

static void draw_fixed_part(void)
{
    for (size_t i = 0; i < block_count - 1; ++i) {
        const struct block *block = &blocks[i];
        draw_bytes(block->offset + block->size, blocks[i + 1].offset, "#ffffff", line);
        draw_bytes(block->offset, block->offset + block->size, fill[block->family], "none");
        draw_bytes(block->offset, block->offset + header_bytes, dark[block->family], "none");
        draw_bytes(block->offset, block->offset + block->size, "none", line);
        draw_label(block);
    }
    for (uint32_t offset = 0; offset < AIC_FIXED_SIZE; offset += row_bytes)
        text_bytes(left - 8, rows_top + offset / row_bytes * (double)row_height + 13.5, "end", offset);
}

static void draw_strip(void)
{
    const double scale = (double)width / AIC_RECORD_SIZE;
    const double tables = AIC_FIXED_SIZE + AIC_LENS_SHADING_TABLES_OFFSET;
    const double sample = 4.0 * sample_columns * sample_rows * sizeof(uint16_t);
    const double end = left + width;
    const double height = 34;
    rectangle(left, strip_top, AIC_FIXED_SIZE * scale, height, "#eeeeee", line);
    rectangle(left + AIC_FIXED_SIZE * scale, strip_top, width - AIC_FIXED_SIZE * scale, height, "#ffffff", line);
    rectangle(left + AIC_FIXED_SIZE * scale, strip_top, (tables - AIC_FIXED_SIZE + sample) * scale, height,
              fill[lens_shading], line);
    rectangle(left + AIC_FIXED_SIZE * scale, strip_top, AIC_LENS_SHADING_TABLES_OFFSET * scale, height,
              dark[lens_shading], line);
    text(left + AIC_FIXED_SIZE * scale / 2, strip_top + 21, "middle", "blocks 1 to 27");
    text(left + (tables + sample / 2) * scale, strip_top + 15, "middle", "28 lens_shading");
    char grid[32];
    snprintf(grid, sizeof grid, "4 tables of %d x %d", sample_columns, sample_rows);
    text(left + (tables + sample / 2) * scale, strip_top + 28, "middle", grid);
    text((left + (tables + sample) * scale + end) / 2, strip_top + 21, "middle", "room for larger tables");
    text_bytes(left, strip_top - 6, "start", 0);
    text_bytes(left + AIC_FIXED_SIZE * scale, strip_top - 6, "middle", AIC_FIXED_SIZE);
    text_bytes(end, strip_top - 6, "end", AIC_RECORD_SIZE);
    /* From the strip's fixed part to its rows. */
    printf("<path d=\"M%d %.0f L%d %d L%.2f %d L%.2f %.0f Z\" fill=\"#f4f4f4\"/>\n", left, strip_top + height, left,
           rows_top - 8, end, rows_top - 8, left + AIC_FIXED_SIZE * scale, strip_top + height);
    text(left + 8, rows_top - 22, "start", "128 bytes a row; dark: header of 8 bytes (id and size), white: padding");
}

static void draw_legend(void)
{
    double x = left;
    for (int family = 0; family < families; ++family) {
        rectangle(x, legend_top - 12, 14, 14, fill[family], line);
        text(x + 20, legend_top, "start", meaning[family]);
        x += 150;
    }
}

int main(void)
{
    const uint32_t rows = (AIC_FIXED_SIZE + row_bytes - 1) / row_bytes;
    const uint32_t height = rows_top + rows * row_height + 12;
    printf("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %d %" PRIu32 "\" font-family=\"sans-serif\" "
           "font-size=\"11\" fill=\"#111\">\n<title>The AIC output record to scale</title>\n",
           left + width + 20, height);
    printf("<rect width=\"100%%\" height=\"100%%\" fill=\"#ffffff\"/>\n");
    draw_legend();
    draw_strip();
    printf("<g font-size=\"9.8\">\n");
    draw_fixed_part();
    printf("</g>\n</svg>\n");
    return 0;
}
