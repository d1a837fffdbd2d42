find_package(TALM_Flow 0.1 REQUIRED COMPONENTS sqlite)
