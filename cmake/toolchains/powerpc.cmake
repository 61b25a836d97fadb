# Big-endian 32-bit PowerPC: Debian's g++-powerpc-linux-gnu; tests run under qemu-user.
# No product of ours runs on one. It is here because a module that is right in the other byte order
# does not depend on the order by accident.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR powerpc)
set(CMAKE_C_COMPILER powerpc-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER powerpc-linux-gnu-g++)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-ppc -L /usr/powerpc-linux-gnu)
set(QUILLCAPTION_COMPILER_HINT
    "install Debian's g++-powerpc-linux-gnu (scripts/setup campaign does), or use the preset i386")
