/**
 * @file
 * The makernote records that the library appends; docs/makernote.md tells when, and what their elements mean.
 */
#ifndef QZ_ISP_MAKERNOTE_RECORDS_H
#define QZ_ISP_MAKERNOTE_RECORDS_H

/**
 * The records in the order of appending: X(name, number, format, count, content). The format is the element type, one
 * of qz_mkn_format without its QZ_MKN_; a count of 0 depends on the frame; the content is told in the names of
 * AIC_BLOCKS.
 */
#define ISP_MAKERNOTE_RECORDS(X)                                                                                       \
    X(VERSION, 538, TEXT, 29, "version")                                                                               \
    X(WHITE_BALANCE, 512, U32, 5, "white_balance")                                                                     \
    X(DEFECT_PIXEL, 517, U32, 6, "defect_pixel")                                                                       \
    X(LONG_3, 546, U32, 7, "long_3")                                                                                   \
    X(YUV_TO_RGB, 537, I32, 10, "yuv_to_rgb")                                                                          \
    X(TEMPORAL_NOISE_REDUCTION, 520, U32, 3, "temporal_noise_reduction")                                               \
    X(REC_3, 530, U16, 3, "rec_3")                                                                                     \
    X(Y_EDGE_ENHANCEMENT, 541, U16, 4, "y_edge_enhancement")                                                           \
    X(FRINGE_CONTROL, 531, I32, 13, "fringe_control: exponent, fields 4 to 11, fields 0 to 3")                         \
    X(BLOCK_9, 545, U16, 1, "block_9")                                                                                 \
    X(CHROMA_NR, 532, U16, 8, "chroma_nr")                                                                             \
    X(CTC, 533, U16, 11, "ctc")                                                                                        \
    X(REC_13, 535, U16, 2, "rec_13_b, rec_13_a")                                                                       \
    X(EDGE_ENHANCEMENT, 519, U32, 3, "edge_enhancement")                                                               \
    X(MACC, 524, I16, 64, "macc")                                                                                      \
    X(MACC_SHIFT, 542, U8, 1, "macc_shift")                                                                            \
    X(NOISE_REDUCTION, 518, U32, 5, "noise_reduction")                                                                 \
    X(BLACK_LEVEL, 514, U32, 5, "black_level and the next block's id")                                                 \
    X(XNR, 521, U16, 1, "xnr")                                                                                         \
    X(REC_16, 523, U32, 6, "rec_16, first six values")                                                                 \
    X(BLOCK_22, 516, U8, 2, "block_22")                                                                                \
    X(LONG_5, 547, U16, 145, "long_5 in 16-bit halves")                                                                \
    X(LONG_6, 549, U16, 295, "long_6 in 16-bit halves")                                                                \
    X(LONG_7, 550, U16, 62, "long_7 in 16-bit halves")                                                                 \
    X(LONG_13, 551, U16, 6, "long_13 in 16-bit halves")                                                                \
    X(LONG_11, 553, U16, 14, "long_11 in 16-bit halves")                                                               \
    X(LONG_12, 554, U16, 97, "long_12 in 16-bit halves")                                                               \
    X(GAMMA_INPUT, 540, U8, 1, "gamma input: 0 none, 2 curves")                                                        \
    X(GAMMA_TABLE, 534, U16, 0, "gamma_0 table")                                                                       \
    X(LENS_SHADING, 527, U32, 6, "lens_shading, enable to format")                                                     \
    X(LENS_SHADING_TABLES, 66064, U16, 0, "lens_shading, all tables")                                                  \
    X(LENS_SHADING_ROWS, 528, U16, 0, "lens_shading, two rows of table 0")                                             \
    X(MANUAL_CONTROLS, 543, I8, 9, "manual controls")                                                                  \
    X(FRAME_GEOMETRY, 544, U16, 8, "frame geometry")

/** Name ids of the records: for each row of ISP_MAKERNOTE_RECORDS one named ISP_MAKERNOTE_ and the row's name. */
enum isp_makernote_record {
#define ISP_MAKERNOTE_NUMBER(name, number, format, count, content) ISP_MAKERNOTE_##name = (number),
    ISP_MAKERNOTE_RECORDS(ISP_MAKERNOTE_NUMBER)
#undef ISP_MAKERNOTE_NUMBER
};

#endif
