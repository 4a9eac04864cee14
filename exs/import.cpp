#include <lumo/exs.h>
