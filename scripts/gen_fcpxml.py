#!/usr/bin/env python3
"""Writes a synthetic but realistically shaped FCPXML 1.11 document of N clips, as Final Cut Pro
exports a library: one asset per clip (its media file, a recording date), an event holding N
asset-clips with reel, scene and take in their metadata and a note on every third, and a project
whose primary storyline cuts the N clips end to end at 25 fps, with a connected clip on lane 1
over every fifth one (an insert from another clip's media) and a cross dissolve at every tenth
cut. Usage: gen_fcpxml.py N OUT.fcpxml [--seed S]
"""
import random
import sys

FRAME = "100/2500s"  # a frame at 25 fps


def t(frames):
    """A time in frames of 25 fps, as Final Cut Pro writes it."""
    return "0s" if frames == 0 else f"{frames * 100}/2500s"


def metadata(rnd):
    return ("<metadata>"
            f'<md key="com.apple.proapps.studio.reel" value="A{rnd.randint(1, 99):03d}"/>'
            f'<md key="com.apple.proapps.studio.scene" value="{rnd.randint(1, 120)}"/>'
            f'<md key="com.apple.proapps.studio.shot" value="{rnd.randint(1, 9)}"/>'
            "</metadata>")


def asset(n, rnd):
    return (f'<asset id="a{n}" name="C{n:06d}" uid="{n:032X}" start="{t(90000 * rnd.randint(1, 9))}" '
            f'duration="{t(20000)}" hasVideo="1" format="r1" hasAudio="1" audioSources="1" '
            f'audioChannels="2" audioRate="48000">'
            f'<media-rep kind="original-media" src="file:///Volumes/Media/C{n:06d}.mov"/>'
            f'<metadata><md key="com.apple.proapps.studio.metadataContentCreated" '
            f'value="2025-03-14 09:{n // 60 % 60:02d}:{n % 60:02d} +0000"/></metadata></asset>')


def asset_clip(n, rnd, offset, start, length, lane=None, inside=""):
    """An asset-clip of asset `n`, holding `inside` (its connected clips) where the DTD puts them."""
    note = "<note>take note</note>" if n % 3 == 0 else ""
    lane_attr = f' lane="{lane}"' if lane is not None else ""
    return (f'<asset-clip ref="a{n}"{lane_attr} offset="{t(offset)}" name="C{n:06d}" start="{t(start)}" '
            f'duration="{t(length)}" tcFormat="NDF">{note}{inside}{metadata(rnd)}</asset-clip>')


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    count = int(sys.argv[1])
    seed = int(sys.argv[sys.argv.index("--seed") + 1]) if "--seed" in sys.argv else 1
    rnd = random.Random(seed)
    with open(sys.argv[2], "w", encoding="utf-8") as out:
        out.write('<?xml version="1.0" encoding="UTF-8"?>\n<!DOCTYPE fcpxml>\n<fcpxml version="1.11">\n')
        out.write('<resources><format id="r1" name="FFVideoFormat1080p25" frameDuration="100/2500s" '
                  'width="1920" height="1080"/>'
                  '<effect id="r2" name="Cross Dissolve" '
                  'uid="FxPlug:4731E73A-8DAC-4113-9A30-AE85B1761265"/>\n')
        for n in range(count):
            out.write(asset(n, rnd) + "\n")
        out.write('</resources>\n<library><event name="Dailies">\n')
        for n in range(count):
            out.write(asset_clip(n, rnd, 0, 90000, rnd.randint(100, 400)) + "\n")
        out.write('<project name="Cut 1"><sequence format="r1" tcStart="0s" tcFormat="NDF" '
                  'audioLayout="stereo" audioRate="48k"><spine>\n')
        position = 0
        for n in range(count):
            length = rnd.randint(50, 300)
            start = 90000 + rnd.randint(0, 5000)
            if n % 10 == 9 and n + 1 < count:
                out.write(f'<transition name="Cross Dissolve" offset="{t(position - 10)}" duration="{t(20)}">'
                          '<filter-video ref="r2" name="Cross Dissolve"/></transition>\n')
            inside = ""
            if n % 5 == 4:
                inside = asset_clip(rnd.randrange(count), rnd, start + length // 3, 90000, length // 3, lane=1)
            out.write(asset_clip(n, rnd, position, start, length, inside=inside) + "\n")
            position += length
        out.write("</spine></sequence></project>\n</event></library>\n</fcpxml>\n")


main()
