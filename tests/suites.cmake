# One line a test program: the rooms' suites against the shared library, then those that inject allocation faults.
qz_isp_test(platform_test)
qz_isp_test(table_resize_test)
qz_isp_every_path(table_resize_test)
qz_isp_test(checksum_test)
qz_isp_every_path(checksum_test)
qz_isp_test(matrix_test)
qz_isp_every_path(matrix_test)
qz_isp_test(polynomial_test)
qz_isp_every_path(polynomial_test)

qz_isp_fault_test(matrix_fault_test)
qz_isp_test(nearest_test)
qz_isp_every_path(nearest_test)
