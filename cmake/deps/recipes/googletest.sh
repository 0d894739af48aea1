version=1.12.1-0.2
origin="package googletest"
files="
927be72067517da503b6538026d451455c9e860f5dbfe237f792543db7d5a928  googletest_1.12.1-0.2_all.deb
"
needs=""
minutes="under a minute"

recipe() { cmake_source=package/usr/src/googletest cmake_build -DBUILD_SHARED_LIBS=OFF -DBUILD_GMOCK=ON; }
