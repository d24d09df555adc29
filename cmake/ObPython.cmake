# OB_PYTHON3: the Python interpreter itself. "python3" may be a script that looks for it, which takes
# longer than many a test.
find_program(OB_PYTHON3_COMMAND python3 REQUIRED)
execute_process(COMMAND "${OB_PYTHON3_COMMAND}" -c "import sys; print(sys.executable)"
    OUTPUT_VARIABLE OB_PYTHON3 OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
