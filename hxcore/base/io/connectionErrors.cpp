#include "io/connectionErrors.h"

#include <netdb.h>

#include <cerrno>

namespace io {

const char* connectionErrorKey(int errNo) {
    switch (errNo) {
    case ECONNRESET:
        return "io_error_tcp_connreset";
    case ECONNREFUSED:
        return "io_error_tcp_connrefused";
    case ECONNABORTED:
        return "io_error_tcp_conndropped";
    case ETIMEDOUT:
        return "io_error_tcp_timedout";
    case ENETUNREACH:
    case EHOSTUNREACH:
        return "io_error_ip_nethostunreach";
    default:
        return nullptr;
    }
}

const char* lookupErrorKey(int eaiError) {
    switch (eaiError) {
    case EAI_NONAME:
        return "io_error_eai_noname";
    case EAI_NODATA:
        return "io_error_eai_nodata";
    case EAI_AGAIN:
        return "io_error_eai_again";
    default:
        return nullptr;
    }
}

} // namespace io
