// SOCI's headers as this tier uses them. Debian's SOCI is configured with Boost support
// but its -dev package does not pull in the Boost headers; the Boost parts are header-only
// conversions this tier never uses, so they are switched off before anything else of
// SOCI is read.
#pragma once

#include <soci/soci-config.h>
#undef SOCI_HAVE_BOOST
#undef SOCI_HAVE_BOOST_DATE_TIME

#include <soci/soci.h>
