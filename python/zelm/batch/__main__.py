import sys

from .batchCommand import main

if __name__ == "__main__":
    sys.exit(main())
