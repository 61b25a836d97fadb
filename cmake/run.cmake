# BUILD/run PROGRAM ARGUMENT...: runs a program of the target, under its emulator if it needs one.
# The toolchain file alone names the emulator; the scripts that start programs ask the build.
list(JOIN CMAKE_CROSSCOMPILING_EMULATOR " " emulator)
file(WRITE ${PROJECT_BINARY_DIR}/run "#!/bin/sh\nexec ${emulator} \"$@\"\n")
file(CHMOD ${PROJECT_BINARY_DIR}/run
     PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
