version=1.0.9-2
origin="source brotli"
files="
ab81b1db852c8d01e0fa5b0b650bb486f32a232b35336828423af50af6fecca0  brotli_1.0.9-2.debian.tar.xz
8c4c86748ec9770e08b60233d658593650444b04a452dc5b607ed5b5537b683e  brotli_1.0.9-2.dsc
f9e8d81d0405ba66d181529af42a3354f838c939095ff99930da6aa9cdf6fe46  brotli_1.0.9.orig.tar.gz
"
needs=""
minutes="under a minute"

recipe() { cmake_build -DBUILD_SHARED_LIBS=OFF -DBROTLI_DISABLE_TESTS=ON; }
