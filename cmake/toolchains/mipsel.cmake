# Little-endian MIPS: Debian's g++-mipsel-linux-gnu; tests run under qemu-user.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR mipsel)
set(CMAKE_C_COMPILER mipsel-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER mipsel-linux-gnu-g++)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-mipsel -L /usr/mipsel-linux-gnu)
set(QUILLCAPTION_COMPILER_HINT
    "install Debian's g++-mipsel-linux-gnu (scripts/setup campaign does), or use the preset i386")
