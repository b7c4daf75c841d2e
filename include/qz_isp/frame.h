/**
 * @file
 * Per-frame inputs and the frame run.
 */
#ifndef QZ_ISP_FRAME_H
#define QZ_ISP_FRAME_H

#include <stdint.h>

#include "qz_isp/aic_record.h"
#include "qz_isp/export.h"
#include "qz_isp/tuning.h"

struct isp_context;

/** Geometry of a frame. */
typedef struct isp_frame_desc {
    isp_geometry size;              /**< Width and height that the selection rules compare. */
    uint8_t horizontal_numerator;   /**< Scaling: output width = width * numerator / denominator. */
    uint8_t horizontal_denominator; /**< Not 0 for lens shading. */
    uint8_t vertical_numerator;     /**< Scaling: output height = height * numerator / denominator. */
    uint8_t vertical_denominator;   /**< Not 0 for lens shading. */
} isp_frame_desc;

/** Gains of a frame's exposure. */
typedef struct isp_exposure {
    uint32_t unused;    /**< Not read. */
    float analog_gain;  /**< 1.0 = unity. */
    float digital_gain; /**< 1.0 = unity. */
} isp_exposure;

/** What the 3A algorithms found about the scene. */
typedef struct isp_scene_params {
    uint32_t unused[4];         /**< Not read. */
    uint32_t macc_target;       /**< Value that multi-axis colour correction matches with its tuning keys. */
    float saturation_decrement; /**< Subtracted from the saturation factor when above 0. */
} isp_scene_params;

/** Colour results of a frame. */
typedef struct isp_colour_params {
    float ccm[9];                /**< Colour correction matrix, row by row. */
    float black_level[4];        /**< Per channel, in raw code values. */
    float white_balance_gain[4]; /**< Per channel, in [0, 65536), 1.0 = unity. */
    float unused[5];             /**< Not read. */
    float saturation;            /**< Saturation factor; 1.0 is taken when it is not above 0. */
    float gamma_parameter;       /**< Step of the two-level effect as a fraction of the gamma table. */
} isp_colour_params;

/** Manual gamma curves. */
typedef struct isp_gamma_params {
    const float
        *curve[3];        /**< One per channel, point_count tone values from 0.0 to 1.0, or null for a straight line. */
    uint32_t point_count; /**< Points in each curve. */
} isp_gamma_params;

/** Lens shading input: four grids of gains. */
typedef struct isp_lsc_params {
    const float *grid[4]; /**< One per channel, height rows of width gains, 1.0 = no correction. */
    uint16_t width;       /**< Gains in a row of a grid. */
    uint16_t height;      /**< Rows of a grid. */
    uint8_t enable;       /**< Not 0: the lens shading block is computed. */
    uint8_t padding[3];   /**< Not read. */
} isp_lsc_params;

/**
 * Inputs of one frame. Every pointer may be null; what it points to belongs to the caller and is only read. Signed
 * 8-bit controls run from -128 to 127, 0 meaning the tuned value unchanged. Numbers in the names of padding count
 * 32-bit words from 0, where addresses have 32 bits.
 */
typedef struct isp_input_params {
    uint32_t tuning_mode;            /**< Order in which tuning sets are taken; also chooses the multi-axis base set. */
    const isp_frame_desc *frame;     /**< Geometry, for selection rules and lens shading. */
    const isp_exposure *exposure;    /**< Gains; unity without. */
    const isp_scene_params *scene;   /**< White balance takes unity without, or without @c colour. */
    const isp_gamma_params *gamma;   /**< Curves; the gamma tables stay as they are without. */
    const isp_colour_params *colour; /**< Colour results; identity and no black level without. */
    const isp_lsc_params *lsc;       /**< Lens shading grids; no lens shading block without. */
    uint32_t gamma_257;              /**< Not 0: gamma tables have 257 entries, else 256. */
    uint32_t nr_mode;                /**< 0: noise reduction off; 2 and above: Bayer noise reduction too. */
    int8_t nr_strength;              /**< Strength of noise reduction. */
    uint8_t padding_9[3];            /**< Rest of word 9: not read. */
    uint32_t edge_mode;              /**< 0: edge enhancement and fringe control off. */
    int8_t sharpness;                /**< Strength of edge enhancement and fringe control. */
    uint8_t padding_11[3];           /**< Rest of word 11: not read. */
    int8_t brightness;               /**< Power curve on the gamma tables. */
    int8_t contrast;                 /**< S-curve on the gamma tables. */
    int8_t hue;                      /**< Rotation of the multi-axis matrices; -128 and 127 are half a turn. */
    int8_t saturation;               /**< Factor of chroma tone control, 0 to 5. */
    uint32_t effects;                /**< Effect flag word, see isp_effect. */
    uint8_t block9_control;          /**< Block 9 holds this byte XOR 1. */
    uint8_t padding_14[3];           /**< Rest of word 14: not read. */
    const isp_geometry *aux_size;    /**< Second geometry for the selection rules. */
    const uint32_t *selection_list;  /**< Handed to tuningselector(). */
} isp_input_params;

/** Where a frame's parameters are. */
typedef struct isp_output_desc {
    const aic_record *record; /**< The context's record; its contents change with the next run. */
    uint32_t bytes_used;      /**< Bytes of the record in use. */
} isp_output_desc;

/**
 * Computes the hardware parameters of one frame.
 *
 * Missing inputs and empty tuning slots give defaults. Without an input or without parsed tuning only the record's
 * address is set.
 *
 * @return ISP_SUCCESS; ISP_INVALID_ARGUMENT with nothing written when the context or the output is null
 */
QZ_ISP_API uint32_t qz_isp_2_7_run(struct isp_context *context, const isp_input_params *input, isp_output_desc *output);

#endif
