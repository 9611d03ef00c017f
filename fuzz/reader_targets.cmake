# Readers of files that people edit.
orbikon_fuzzer(settings settings_fuzz.cpp LIBRARIES ob_core)
orbikon_fuzzer(menu_reader menu_reader_fuzz.cpp LIBRARIES ob_core)
