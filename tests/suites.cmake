# One line a test program: the rooms' suites against the shared library, then those that inject allocation faults.
qz_isp_test(platform_test)
qz_isp_test(table_resize_test)
qz_isp_every_path(table_resize_test)
