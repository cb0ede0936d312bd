#!/usr/bin/env python3
"""Renders worksheets of a workbook as pictures, each on one page, with LibreOffice Calc and poppler.

usage: picture.py WORKBOOK FOLDER [DPI [X,Y,WIDTH,HEIGHT]]      writes FOLDER/sheet-NN.png

X and so on cut that part, in pixels, out of every picture.

For looking at a result as a reader sees it; nothing is compared."""

import pathlib
import socket
import subprocess
import sys
import tempfile
import time

import uno
from com.sun.star.beans import PropertyValue

START_SECONDS = 60
# Wide enough for three pay periods side by side in readable type; hundredths of a millimetre.
PAGE_WIDTH, PAGE_HEIGHT = 84000, 59400


def option(name, value):
    setting = PropertyValue()
    setting.Name, setting.Value = name, value
    return setting


def free_port() -> int:
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def connect(port: int):
    context = uno.getComponentContext()
    resolver = context.ServiceManager.createInstanceWithContext("com.sun.star.bridge.UnoUrlResolver", context)
    deadline = time.monotonic() + START_SECONDS
    while True:
        try:
            return resolver.resolve(f"uno:socket,host=127.0.0.1,port={port};urp;StarOffice.ComponentContext")
        except Exception:  # the office has no narrower type for "not up yet"
            if time.monotonic() > deadline:
                raise SystemExit("LibreOffice did not start")
            time.sleep(0.3)


def one_page_each(document) -> None:
    styles = document.StyleFamilies.getByName("PageStyles")
    for index in range(styles.Count):
        style = styles.getByIndex(index)
        style.IsLandscape = True
        style.Width, style.Height = PAGE_WIDTH, PAGE_HEIGHT
        style.ScaleToPagesX = style.ScaleToPagesY = 1
        style.HeaderIsOn = style.FooterIsOn = False


def main() -> int:
    workbook, folder = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
    dpi = sys.argv[3] if len(sys.argv) > 3 else "80"
    part = sys.argv[4].split(",") if len(sys.argv) > 4 else []
    cut = [word for pair in zip(("-x", "-y", "-W", "-H"), part) for word in pair]
    folder.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory() as scratch:
        port = free_port()
        office = subprocess.Popen(["soffice", "--headless", "--norestore", f"-env:UserInstallation=file://{scratch}/profile",
                                   f"--accept=socket,host=127.0.0.1,port={port};urp;"],
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            context = connect(port)
            desktop = context.ServiceManager.createInstanceWithContext("com.sun.star.frame.Desktop", context)
            document = desktop.loadComponentFromURL(workbook.as_uri(), "_blank", 0, (option("Hidden", True),))
            one_page_each(document)
            pdf = pathlib.Path(scratch) / "sheets.pdf"
            document.storeToURL(pdf.as_uri(), (option("FilterName", "calc_pdf_Export"),))
            document.close(True)
        finally:
            office.terminate()
            office.wait(30)
        subprocess.run(["pdftoppm", "-r", dpi, *cut, "-png", str(pdf), str(folder / "sheet")], check=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
