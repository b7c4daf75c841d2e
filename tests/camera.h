// A camera with its tuning, its characterisation, a makernote and the context made of them.
#pragma once

#include <array>
#include <string>

#include <gtest/gtest.h>

#include "qz_isp/context.h"
#include "qz_isp/error.h"
#include "qz_isp/frame.h"
#include "qz_mkn.h"
#include "tests/container_builder.h"

namespace test {

class camera {
  public:
    explicit camera(const bytes &records = {}, uint32_t grid_width = 1, uint32_t grid_height = 1)
        : container_(records), context(qz_isp_2_7_init(container_.blob(), grid_width, grid_height, &cmc, mkn)),
          first_frame_record_(qz_mkn_record_count(mkn))
    {}
    ~camera()
    {
        qz_isp_2_7_deinit(context);
        qz_mkn_destroy(mkn);
    }
    camera(const camera &) = delete;
    camera &operator=(const camera &) = delete;

    const aic_record &run(const isp_input_params &input)
    {
        first_frame_record_ = qz_mkn_record_count(mkn);
        EXPECT_EQ(qz_isp_2_7_run(context, &input, &output), ISP_SUCCESS);
        return *output.record;
    }

    // The makernote records of the last frame as "format:name:count".
    std::string makernote() const
    {
        std::string all;
        qz_mkn_record record = {};
        for (uint32_t i = first_frame_record_; qz_mkn_get_record(mkn, i, &record); ++i)
            all += std::to_string(record.format) + ':' + std::to_string(record.name) + ':' +
                   std::to_string(record.count) + ' ';
        return all;
    }

  private:
    container container_;
    isp_sensor_description sensor_ = {{1, 2}, 3264, 2448, 10, 7};
    isp_entry_table_header header_ = {{3, 4}, 2};
    std::array<uint8_t, 32> entries_ = {1, 2, 3};

  public:
    isp_cmc cmc = {nullptr, nullptr, &sensor_, &header_, entries_.data()};
    qz_mkn *mkn = qz_mkn_create();
    isp_context *context;
    isp_output_desc output = {};

  private:
    uint32_t first_frame_record_;
};

} // namespace test
