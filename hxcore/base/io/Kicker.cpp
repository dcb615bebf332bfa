#include "io/Kicker.h"

namespace plat {

void Kicker::kicked(io::FdKicker*) {
    kicker.drain();
    kickee->kicked();
}

} // namespace plat
