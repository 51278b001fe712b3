#!/usr/bin/env python3
"""Takes a picture of a chart with a virtual board, and writes it: picture.py FILE.png [NAME=VALUE...]"""
import sys

import vexo


def main():
    if len(sys.argv) < 2:
        sys.exit("give the name of the file")
    file, *settings = sys.argv[1:]
    with vexo.Station.virtual() as station:
        station.set({"FG_WIDTH": 640, "FG_HEIGHT": 480})
        try:
            station.set(dict(setting.partition("=")[::2] for setting in settings), any_order=True)
            image = station.grab()
            image.write(file)
        except vexo.Error as error:  # says what would be accepted, or why no picture came
            sys.exit(str(error))
        print(f"{file}: {image.shape[1]} x {image.shape[0]} pixels of {station.FG_FORMAT.label}, "
              f"complete after {image.tick / vexo.TICKS_PER_SECOND:.6f} s, mean of red {image.rgb[..., 0].mean():.1f}")


if __name__ == "__main__":
    main()
