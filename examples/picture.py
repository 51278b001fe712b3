#!/usr/bin/env python3
"""Takes a picture of a chart with a virtual board, and writes it: picture.py FILE.png [NAME=VALUE...]"""
import sys

import vexo


def change(station, settings):
    """Sets "NAME=VALUE" words, all or none, in an order that is accepted."""
    station.set(dict(setting.partition("=")[::2] for setting in settings), any_order=True)


def show_refusal(station):
    """A refusal says why, and what would be accepted; it changes nothing."""
    try:
        station.FG_WIDTH = 20000
    except vexo.Refused as refused:
        print(f"{refused}\n  limit {refused.limit}, nearest {refused.nearest}")
        print(f"  the width is still {station.FG_WIDTH}")


def describe(file, image, station):
    """The numbers of a picture, and what the station recorded about it."""
    record = image.record
    print(f"{file}: {image.shape[1]} x {image.shape[0]} pixels of {station.FG_FORMAT.label}, "
          f"complete after {image.tick / vexo.TICKS_PER_SECOND:.6f} s, mean of red {image.rgb[..., 0].mean():.1f}")
    print(f"  picture {record.number}, its lines came in "
          f"{1e3 * (record.last_line - record.first_line) / vexo.TICKS_PER_SECOND:.3f} ms, "
          f"{record.lost_before} images were lost before it")


def main():
    if len(sys.argv) < 2:
        sys.exit("give the name of the file")
    file, *settings = sys.argv[1:]
    with vexo.Station.virtual() as station:
        station.set({"FG_WIDTH": 640, "FG_HEIGHT": 480})
        show_refusal(station)
        try:
            change(station, settings)
            image = station.grab()
            image.write(file)
        except vexo.Error as error:  # an unknown name, a refused value, or why no picture came
            sys.exit(str(error))
        describe(file, image, station)


if __name__ == "__main__":
    main()
