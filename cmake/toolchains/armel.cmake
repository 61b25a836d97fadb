# ARM soft float, for boards whose processor or system passes no floating point in registers: Debian's
# g++-arm-linux-gnueabi; tests run under qemu-user.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_C_COMPILER arm-linux-gnueabi-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabi-g++)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L /usr/arm-linux-gnueabi)
set(QUILLCAPTION_COMPILER_HINT
    "install Debian's g++-arm-linux-gnueabi (scripts/setup campaign does), or use the preset i386")
