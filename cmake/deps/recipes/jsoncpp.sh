version=1.9.5-4
origin="source libjsoncpp"
files="
7b2c69f8da928f65230395d910d4e0b51b1ea0194f6e6e3315a817a55fc8d8a8  libjsoncpp_1.9.5-4.debian.tar.xz
04ebf5df2f9336f2c8959258b922fd4a9de9b77a0cf19139939a5d4c30ab762b  libjsoncpp_1.9.5-4.dsc
f409856e5920c18d0c2fb85276e24ee607d2a09b5e7d5f0a371368903c275da2  libjsoncpp_1.9.5.orig.tar.gz
"
needs=""
minutes="under a minute"

recipe() {
  cmake_build -DBUILD_SHARED_LIBS=ON -DBUILD_STATIC_LIBS=OFF -DBUILD_OBJECT_LIBS=OFF \
    -DJSONCPP_WITH_TESTS=OFF -DJSONCPP_WITH_POST_BUILD_UNITTEST=OFF -DJSONCPP_WITH_EXAMPLE=OFF
}
