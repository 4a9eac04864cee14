#include <lumo/relink.h>
